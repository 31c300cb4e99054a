#!/usr/bin/env bash
# Fails when a C++ source differs from the committed clang-format style.
set -euo pipefail
cd "$(dirname "$0")/.."
find src tests bench fuzz -type f \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format --dry-run --Werror

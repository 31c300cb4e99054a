#include "update/Version.h"

#include <cctype>
#include <string>
#include <vector>

namespace orlet {

namespace {

enum class Kind { number, word, separator };

struct Part {
  Kind kind;
  std::string text;
};

Kind kindOf(char c) {
  const auto u = static_cast<unsigned char>(c);
  if (std::isdigit(u)) return Kind::number;
  if (std::isalpha(u)) return Kind::word;
  return Kind::separator;
}

std::vector<Part> split(std::string_view v) {
  std::vector<Part> parts;
  for (char c : v) {
    const Kind k = kindOf(c);
    // Every separator is a part of its own: "1..2" has two of them.
    if (parts.empty() || parts.back().kind != k || k == Kind::separator) parts.push_back({k, {}});
    parts.back().text += c;
  }
  return parts;
}

// Numbers of any length without overflow: drop leading zeros, then the longer is larger.
int compareNumbers(std::string_view a, std::string_view b) {
  a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
  b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  return a.compare(b);
}

int sign(int v) {
  return (v > 0) - (v < 0);
}

// Ranks of a part where the other version has a different kind: a number continues a release,
// a separator is neutral, a word starts a pre-release.
int rank(Kind k) {
  switch (k) {
    case Kind::word:
      return 0;
    case Kind::separator:
      return 1;
    case Kind::number:
      return 2;
  }
  return 1;
}

}  // namespace

int compareVersions(std::string_view a, std::string_view b) {
  const auto pa = split(a), pb = split(b);
  const std::size_t common = std::min(pa.size(), pb.size());
  for (std::size_t i = 0; i < common; ++i) {
    const Part &x = pa[i], &y = pb[i];
    if (x.kind != y.kind) return rank(x.kind) < rank(y.kind) ? -1 : 1;
    if (x.kind == Kind::number) {
      if (const int c = compareNumbers(x.text, y.text)) return c;
    } else if (x.kind == Kind::word) {
      if (const int c = x.text.compare(y.text)) return sign(c);
    }
  }
  if (pa.size() == pb.size()) return 0;
  // The longer one goes on: with a word it is a pre-release of the shorter ("1.0b" < "1.0"),
  // otherwise a later release ("1.0.1" > "1.0"). Separators and zeros alone change
  // nothing.
  const bool aLonger = pa.size() > pb.size();
  const auto& rest = aLonger ? pa : pb;
  for (std::size_t i = common; i < rest.size(); ++i) {
    if (rest[i].kind == Kind::separator) continue;
    // "1.0.0" is "1.0".
    if (rest[i].kind == Kind::number && compareNumbers(rest[i].text, "0") == 0) continue;
    const int longerIsNewer = rest[i].kind == Kind::number ? 1 : -1;
    return aLonger ? longerIsNewer : -longerIsNewer;
  }
  return 0;
}

}  // namespace orlet

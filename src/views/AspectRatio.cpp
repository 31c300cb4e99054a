#include "views/AspectRatio.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace orlet {
namespace {

struct NamedRatio {
  double value;
  std::string_view label;
};

// Order matters: 1.55 is within 5 % of both 8/5 and 3/2 and must read "8/5".
constexpr std::array<NamedRatio, 8> kNamedRatios{{
    {1.6, "8/5"},
    {16.0 / 9.0, "16/9"},
    {7.0 / 3.0, "7/3"},
    {32.0 / 9.0, "32/9"},
    {4.0 / 3.0, "4/3"},
    {1.5, "3/2"},
    {1.25, "5/4"},
    {1.0, "1/1"},
}};

constexpr double kTolerance = 0.05;
constexpr std::int64_t kMaxDenominator = 50;
constexpr std::int64_t kMaxNumerator = 200;

// Rounds halves away from zero; a value that is not a representable integer is a caller bug.
std::int64_t roundedOrDie(double value) {
  constexpr double limit = 9.2e18;
  if (!std::isfinite(value) || std::fabs(value) > limit) {
    std::fprintf(stderr, "simplifiedRatio: cannot round %f\n", value);
    std::abort();
  }
  return std::llround(value);
}

std::string fraction(std::int64_t numerator, std::int64_t denominator) {
  const std::int64_t g = gcd(numerator, denominator);
  return std::to_string(numerator / g) + "/" + std::to_string(denominator / g);
}

}  // namespace

std::int64_t gcd(std::int64_t a, std::int64_t b) {
  while (b != 0) {
    const std::int64_t r = a % b;
    a = b;
    b = r;
  }
  return a;
}

std::string simplifiedRatio(std::int64_t width, std::int64_t height) {
  const double ratio = static_cast<double>(width) / static_cast<double>(height);
  std::int64_t bestNumerator = width;
  std::int64_t bestDenominator = height;
  double bestError = std::numeric_limits<double>::infinity();
  for (std::int64_t d = 1; d <= kMaxDenominator; ++d) {
    const std::int64_t n = roundedOrDie(ratio * static_cast<double>(d));
    if (n <= 0 || n > kMaxNumerator) continue;
    const double error = std::fabs(static_cast<double>(n) / static_cast<double>(d) - ratio) / ratio;
    if (error < bestError) {
      bestNumerator = n;
      bestDenominator = d;
      bestError = error;
    }
  }
  return fraction(bestNumerator, bestDenominator);
}

std::string aspectRatio(std::int64_t width, std::int64_t height) {
  const double ratio = static_cast<double>(width) / static_cast<double>(height);
  for (const auto& named : kNamedRatios) {
    if (std::fabs(ratio - named.value) / named.value < kTolerance) return std::string(named.label);
  }
  return simplifiedRatio(width, height);
}

}  // namespace orlet

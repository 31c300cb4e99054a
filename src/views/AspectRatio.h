#pragma once

#include <cstdint>
#include <string>

namespace orlet {

// The label of a display's shape: the first named ratio within 5 % (relative) of width/height,
// in a fixed order ("8/5" before "16/9" ..., ultra-wide as "7/3"), else simplifiedRatio().
std::string aspectRatio(std::int64_t width, std::int64_t height);

// The closest fraction with a denominator up to 50 and a numerator up to 200, reduced; the
// reduced width/height when no such fraction exists. A zero height is a programming error.
std::string simplifiedRatio(std::int64_t width, std::int64_t height);

// Euclid by signed remainder: gcd(a, 0) = a.
std::int64_t gcd(std::int64_t a, std::int64_t b);

}  // namespace orlet

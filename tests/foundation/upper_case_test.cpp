#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/UpperCase.h"

namespace orlet {
namespace {

// What keyboard layouts type on their own, and what must come through untouched.
TEST(UpperCaseTest, LettersOfTheLayoutsAndNothingElse) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"k", "K"},
      {"7+k", "7+K"},
      {"é", "É"},
      {"ç", "Ç"},
      {"ÿ", "Ÿ"},
      {"ß", "ß"},
      {"÷", "÷"},
      {"ł", "Ł"},
      {"ĺ", "Ĺ"},
      {"ж", "Ж"},
      {"ё", "Ё"},
      {"σς", "ΣΣ"},
      {"⎋", "⎋"},
      {"\r", "\r"},
      {"\xff"
       "a",
       "\xff"
       "A"},  // a stray byte is kept, the rest still converted
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(upperCased(in), out) << in;
}

}  // namespace
}  // namespace orlet

#include "Apps/kestrom/InputRules.hpp"

#include <gtest/gtest.h>

namespace kestrom::app {
namespace {

struct Row {
  std::string_view label;
  std::string text;
  InputBounds bounds;
  std::string_view refusal;  // empty: taken
};

std::string said(const std::optional<std::string>& refusal) {
  return refusal.value_or("");
}

TEST(InputRules, TextCountsCharactersAsUsersSeeThem) {
  const std::string family = "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
  const Row rows[] = {
      {"no bounds", "x", {}, ""},
      {"both ends count", "12345", {5, 5}, ""},
      {"too short", "1234", {5, 10}, "Please enter text between 5 and 10 characters"},
      {"too long", "12345678901", {5, 10}, "Please enter text between 5 and 10 characters"},
      {"only a lower bound", "1234", {5, {}}, "Please enter text of at least 5 characters"},
      {"only an upper bound", "123", {{}, 2}, "Please enter text of at most 2 characters"},
      {"three people, one character", family, {1, 1}, ""},
      {"a letter and its accent", "e\xCC\x81", {{}, 1}, ""},
      {"a field without an upper bound is full", std::string(100, 'x'), {}, ""},
      {"beyond that field", std::string(101, 'x'), {5, {}}, "Please enter text of at most 100 characters"},
      {"an upper bound of its own", std::string(101, 'x'), {{}, 101}, ""},
  };
  for (const Row& row : rows) EXPECT_EQ(said(textRefusal(row.text, row.bounds)), row.refusal) << row.label;
}

TEST(InputRules, NumbersWithBoundsAreWholeDecimalNumbers) {
  const Row rows[] = {
      {"without bounds anything goes", "2e3", {}, ""},
      {"both ends count", "3", {3, 3}, ""},
      {"a sign", "+7", {0, 10}, ""},
      {"below zero", "-7", {-10, {}}, ""},
      {"two signs", "+-7", {-10, 10}, "Enter a number between -10 and 10"},
      {"a sign alone", "+", {0, 10}, "Enter a number between 0 and 10"},
      {"exponent", "2e3", {0, {}}, "Enter a number of at least 0"},
      {"a point", "5.0", {{}, 9}, "Enter a number of at most 9"},
      {"a blank", "5 ", {0, 9}, "Enter a number between 0 and 9"},
      {"the largest", "9223372036854775807", {0, {}}, ""},
      {"beyond 64 bits", "9223372036854775808", {0, {}}, "Enter a number of at least 0"},
  };
  for (const Row& row : rows) EXPECT_EQ(said(numberRefusal(row.text, row.bounds)), row.refusal) << row.label;
}

TEST(InputRules, YearsHaveFourCharactersAtMost) {
  EXPECT_EQ(said(yearRefusal("1900", {1900, 2030})), "");
  EXPECT_EQ(said(yearRefusal("1899", {1900, 2030})), "Enter a year between 1900 and 2030");
  EXPECT_EQ(said(yearRefusal("01990", {1900, 2030})), "Enter a year between 1900 and 2030");
}

}  // namespace
}  // namespace kestrom::app

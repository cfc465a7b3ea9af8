#include "Platform/Foundation/DateText.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace kestrom::foundation {
namespace {

TEST(DateText, ReadsTheDatesOfAnswers) {
  struct Row {
    std::string_view text;
    std::optional<double> secondsSince1970;
  };
  const Row rows[] = {
      {"1970-01-01T00:00:00.000Z", 0.0},
      {"2001-01-01T00:00:00.5Z", 978307200.5},
      {"2024-02-29T12:34:56.789+0000", 1709210096.789},
      {"2024-02-29T14:34:56.789+02:00", 1709210096.789},
      {"2024-02-29T07:04:56.789-0530", 1709210096.789},
      {"2024-02-29T12:34:56.123456789Z", 1709210096.123456789},
      {"1969-12-31T23:59:59.250Z", -0.75},
      {"2024-02-29T12:34:56Z", std::nullopt},
      {"2024-02-29T12:34:56.Z", std::nullopt},
      {"2024-02-29T12:34:56.1234567890Z", std::nullopt},
      {"2024-02-29T12:34:56.789", std::nullopt},
      {"2024-02-29T12:34:56.789z", std::nullopt},
      {"2024-02-29T12:34:56.789Z ", std::nullopt},
      {" 2024-02-29T12:34:56.789Z", std::nullopt},
      {"2024-02-29 12:34:56.789Z", std::nullopt},
      {"2023-02-29T12:34:56.789Z", std::nullopt},
      {"2024-00-29T12:34:56.789Z", std::nullopt},
      {"2024-04-31T12:34:56.789Z", std::nullopt},
      {"2024-02-29T24:00:00.000Z", std::nullopt},
      {"2024-02-29T12:60:00.000Z", std::nullopt},
      {"2024-02-29T12:00:60.000Z", std::nullopt},
      {"2024-02-29T12:00:00.000+24:00", std::nullopt},
      {"2024-02-29T12:00:00.000+02", std::nullopt},
      {"24-02-29T12:00:00.000Z", std::nullopt},
      {"", std::nullopt},
  };
  for (const Row& row : rows) {
    const auto date = parseAnswerDate(row.text);
    ASSERT_EQ(date.has_value(), row.secondsSince1970.has_value()) << row.text;
    EXPECT_DOUBLE_EQ(date.value_or(Date{}).secondsSince1970(), row.secondsSince1970.value_or(Date{}.secondsSince1970()))
        << row.text;
  }
  EXPECT_EQ(parseISO8601("2024-02-29T12:34:56Z"), parseAnswerDate("2024-02-29T12:34:56.0Z"));
}

TEST(DateText, WritesWholeSecondsOfUTC) {
  EXPECT_EQ(iso8601String(Date{0}), "2001-01-01T00:00:00Z");
  EXPECT_EQ(iso8601String(Date{-0.25}), "2000-12-31T23:59:59Z");
  EXPECT_EQ(iso8601String(Date::fromSecondsSince1970(1709210096.999)), "2024-02-29T12:34:56Z");
  EXPECT_EQ(iso8601String(Date{1e300}), "9999-12-31T23:59:59Z");
  EXPECT_EQ(iso8601String(Date{-std::numeric_limits<double>::infinity()}), "0001-01-01T00:00:00Z");
}

}  // namespace
}  // namespace kestrom::foundation

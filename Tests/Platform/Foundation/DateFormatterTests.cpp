#include "Platform/Foundation/DateFormatter.hpp"

#include "Platform/Foundation/DateText.hpp"

#include <gtest/gtest.h>

#include <cstdio>

namespace kestrom::foundation {
namespace {

constexpr std::string_view kPattern = "yyyy-MM-dd HH:mm:ss";

TEST(DateFormatter, ReadsOnlyWhatItWrites) {
  struct Row {
    std::string_view zone, text;
    std::optional<std::string_view> utc;
  };
  const Row rows[] = {
      {"UTC", "2024-02-29 23:59:59", "2024-02-29T23:59:59Z"},
      {"America/New_York", "1969-12-31 19:00:00", "1970-01-01T00:00:00Z"},
      {"Asia/Kathmandu", "2024-01-01 00:00:00", "2023-12-31T18:15:00Z"},
      {"Europe/Berlin", "2024-01-31 12:34:56", "2024-01-31T11:34:56Z"},
      {"Europe/Berlin", "2024-03-31 01:59:59", "2024-03-31T00:59:59Z"},
      {"Europe/Berlin", "2024-03-31 02:30:00", std::nullopt},
      {"Europe/Berlin", "2024-03-31 03:00:00", "2024-03-31T01:00:00Z"},
      {"Europe/Berlin", "2024-10-27 02:30:00", "2024-10-27T01:30:00Z"},
      {"UTC", "2023-02-29 00:00:00", std::nullopt},
      {"UTC", "2024-01-31 24:00:00", std::nullopt},
      {"UTC", "2024-01-31 12:34:60", std::nullopt},
      {"UTC", "2024-1-5 1:2:3", std::nullopt},
      {"UTC", "02024-01-31 12:34:56", std::nullopt},
      {"UTC", "24-01-31 12:34:56", std::nullopt},
      {"UTC", " 2024-01-31 12:34:56", std::nullopt},
      {"UTC", "2024-01-31 12:34:56 ", std::nullopt},
      {"UTC", "2024-01-31  12:34:56", std::nullopt},
      {"UTC", "2024-01-31\t12:34:56", std::nullopt},
      {"UTC", "2024-01-31T12:34:56", std::nullopt},
      {"UTC", "2024-01-31 12:34", std::nullopt},
      {"UTC", "٢٠٢٤-01-31 12:34:56", std::nullopt},
      {"UTC", "2024-01-31 12:34:56\xFF", std::nullopt},
      {"UTC", "", std::nullopt},
  };
  for (const Row& row : rows) {
    const DateFormatter formatter(kPattern, {.locale = "en_US", .zone = std::string(row.zone)});
    const auto date = formatter.date(row.text);
    ASSERT_EQ(date.has_value(), row.utc.has_value()) << row.zone << " " << row.text;
    if (!date) continue;
    EXPECT_EQ(iso8601String(*date), *row.utc) << row.zone << " " << row.text;
    EXPECT_EQ(formatter.string(*date), row.text) << row.zone;
  }
}

TEST(DateFormatter, CutsFractionsAndKeepsEveryMillisecond) {
  const DateFormatter seconds(kPattern, {.locale = "en_US", .zone = "UTC"});
  EXPECT_EQ(seconds.string(Date{-0.25}), "2000-12-31 23:59:59");
  EXPECT_EQ(seconds.string(Date{59.9995}), "2001-01-01 00:00:59");

  const DateFormatter milliseconds("yyyy-MM-dd'T'HH:mm:ss.SSSZ", {.locale = "en_US", .zone = "Europe/Berlin"});
  for (int fraction = 0; fraction < 1000; ++fraction) {
    char text[40];
    std::snprintf(text, sizeof text, "2024-07-01T12:34:56.%03d+0200", fraction);
    const auto date = milliseconds.date(text);
    ASSERT_EQ(date, parseAnswerDate(text)) << text;
    ASSERT_EQ(milliseconds.string(*date), text);
  }
}

TEST(DateFormatter, FollowsTheRegion) {
  const Date date = *parseISO8601("2024-01-31T12:34:56Z");
  EXPECT_EQ(DateFormatter("d. MMMM yyyy", {.locale = "de_DE", .zone = "UTC"}).string(date), "31. Januar 2024");
  EXPECT_EQ(DateFormatter("d MMMM yyyy", {.locale = "fr_FR", .zone = "UTC"}).string(date), "31 janvier 2024");
}

TEST(DateFormatterDeathTest, APatternOrAZoneThatThereIsNotIsFatal) {
  EXPECT_DEATH(DateFormatter("yyyy o", {.locale = "en_US", .zone = "UTC"}), "Cannot create a date formatter");
  EXPECT_DEATH(DateFormatter(kPattern, {.locale = "en_US", .zone = "Mars/Base"}), "Mars/Base");
}

}  // namespace
}  // namespace kestrom::foundation

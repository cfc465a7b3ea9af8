#include "Platform/Foundation/DateText.hpp"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace kestrom::foundation {

namespace {

using namespace std::chrono;

constexpr sys_days kReference{year{2001} / January / 1};

class Reader {
 public:
  explicit Reader(std::string_view text) : _rest(text) {}

  bool take(char c) {
    if (!_rest.starts_with(c)) return false;
    _rest.remove_prefix(1);
    return true;
  }

  /// Exactly `count` decimal digits.
  std::optional<int> digits(std::size_t count) {
    if (_rest.size() < count) return std::nullopt;
    int value = 0;
    for (const char c : _rest.substr(0, count)) {
      if (c < '0' || c > '9') return std::nullopt;
      value = value * 10 + (c - '0');
    }
    _rest.remove_prefix(count);
    return value;
  }

  /// One to nine digits behind a point, as nanoseconds.
  std::optional<std::int64_t> fraction() {
    std::int64_t nanoseconds = 0;
    int count = 0;
    for (; count < 9 && !_rest.empty() && _rest.front() >= '0' && _rest.front() <= '9'; ++count) {
      nanoseconds = nanoseconds * 10 + (_rest.front() - '0');
      _rest.remove_prefix(1);
    }
    if (count == 0) return std::nullopt;
    for (; count < 9; ++count) nanoseconds *= 10;
    return nanoseconds;
  }

  /// Seconds east of Greenwich.
  std::optional<int> zone() {
    if (take('Z')) return 0;
    const bool isWest = _rest.starts_with('-');
    if (!take('+') && !take('-')) return std::nullopt;
    const auto hours = digits(2);
    take(':');
    const auto minutes = digits(2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59) return std::nullopt;
    const int seconds = *hours * 3600 + *minutes * 60;
    return isWest ? -seconds : seconds;
  }

  bool isAtEnd() const { return _rest.empty(); }

 private:
  std::string_view _rest;
};

std::optional<Date> parse(std::string_view text, bool requiresFraction) {
  Reader reader(text);
  const auto yearNumber = reader.digits(4);
  if (!yearNumber || !reader.take('-')) return std::nullopt;
  const auto monthNumber = reader.digits(2);
  if (!monthNumber || !reader.take('-')) return std::nullopt;
  const auto dayNumber = reader.digits(2);
  if (!dayNumber || !reader.take('T')) return std::nullopt;
  const auto hour = reader.digits(2);
  if (!hour || !reader.take(':')) return std::nullopt;
  const auto minute = reader.digits(2);
  if (!minute || !reader.take(':')) return std::nullopt;
  const auto second = reader.digits(2);
  if (!second) return std::nullopt;
  std::int64_t nanoseconds = 0;
  if (reader.take('.')) {
    const auto read = reader.fraction();
    if (!read) return std::nullopt;
    nanoseconds = *read;
  } else if (requiresFraction) {
    return std::nullopt;
  }
  const auto zone = reader.zone();
  const year_month_day day{year{*yearNumber}, month{static_cast<unsigned>(*monthNumber)},
                           std::chrono::day{static_cast<unsigned>(*dayNumber)}};
  if (!zone || !reader.isAtEnd() || !day.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;

  const std::int64_t wholeDays = (sys_days{day} - kReference).count();
  const std::int64_t wholeSeconds = wholeDays * 86400 + *hour * 3600 + *minute * 60 + *second - *zone;
  return Date{static_cast<double>(wholeSeconds) + static_cast<double>(nanoseconds) / 1e9};
}

}  // namespace

std::string iso8601String(Date date) {
  // Years of four digits; beyond them the form is undefined, so what is no such date is held at its borders.
  constexpr auto kFirst = std::chrono::seconds(sys_days{year{1} / January / 1} - kReference).count();
  constexpr auto kLast = std::chrono::seconds(sys_days{year{10000} / January / 1} - kReference).count() - 1;
  const double seconds = std::isnan(date.secondsSinceReferenceDate) ? 0 : std::floor(date.secondsSinceReferenceDate);
  const auto whole =
      static_cast<std::int64_t>(std::fmin(std::fmax(seconds, static_cast<double>(kFirst)), static_cast<double>(kLast)));
  const auto days = floor<std::chrono::days>(std::chrono::seconds{whole});
  const year_month_day day{kReference + days};
  const hh_mm_ss time{std::chrono::seconds{whole} - days};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

std::optional<Date> parseISO8601(std::string_view text) {
  return parse(text, false);
}
std::optional<Date> parseAnswerDate(std::string_view text) {
  return parse(text, true);
}

}  // namespace kestrom::foundation

#pragma once

#include "Kestrom/Platform/Date.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// Where a date formatter writes and reads; empty texts stand for what the device is set to.
struct DateFormatterRegion {
  /// As ICU names it: "en_US".
  std::string locale = {};
  /// As the IANA time zone database names it: "Europe/Berlin".
  std::string zone = {};
};

/// Writes and reads dates by a pattern of Unicode's CLDR, for example "yyyy-MM-dd HH:mm:ss". Digits, names and calendar
/// are those of the locale. Immutable after construction, the device's settings included; any thread.
class DateFormatter {
 public:
  /// A pattern or a zone that there is not is a mistake of the programmer.
  explicit DateFormatter(std::string_view pattern, const DateFormatterRegion& region = {});
  ~DateFormatter();
  DateFormatter(DateFormatter&&) noexcept;
  DateFormatter& operator=(DateFormatter&&) noexcept;

  std::string string(Date date) const;

  /// The date that `text` tells, to the millisecond; absent unless the text is exactly what `string` writes for it. So
  /// there is none for a day that does not exist and for a time that a change of the clock skips. Of a time that a
  /// change of the clock brings twice the later one is meant.
  std::optional<Date> date(std::string_view text) const;

 private:
  struct Formatter;
  std::unique_ptr<Formatter> _formatter;
};

}  // namespace kestrom::foundation

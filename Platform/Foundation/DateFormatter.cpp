#include "Platform/Foundation/DateFormatter.hpp"

#include "Platform/Foundation/FatalError.hpp"

#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cmath>
#include <cstdint>

namespace kestrom::foundation {

namespace {

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

}  // namespace

struct DateFormatter::Formatter {
  icu::SimpleDateFormat icu;
};

DateFormatter::DateFormatter(std::string_view pattern, const DateFormatterRegion& region) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Locale locale = region.locale.empty() ? icu::Locale::getDefault() : icu::Locale(region.locale.c_str());
  _formatter = std::make_unique<Formatter>(icu::SimpleDateFormat(unicode(pattern), locale, error));
  icu::SimpleDateFormat& formatter = _formatter->icu;
  if (!region.zone.empty()) formatter.adoptTimeZone(icu::TimeZone::createTimeZone(unicode(region.zone)));
  const bool isKnownZone = region.zone.empty() || formatter.getTimeZone() != icu::TimeZone::getUnknown();

  // A letter that means nothing is found only when the pattern is used.
  icu::UnicodeString probe;
  formatter.format(UDate{0}, probe, nullptr, error);
  if (U_FAILURE(error) || !isKnownZone) {
    fatalError("Cannot create a date formatter for \"" + std::string(pattern) + "\", zone \"" + region.zone + "\"");
  }
}

DateFormatter::~DateFormatter() = default;
DateFormatter::DateFormatter(DateFormatter&&) noexcept = default;
DateFormatter& DateFormatter::operator=(DateFormatter&&) noexcept = default;

std::string DateFormatter::string(Date date) const {
  // A microsecond more, so that a millisecond that a double does not hold exactly is not written as the one before.
  const UDate milliseconds = std::floor(date.secondsSince1970() * 1000 + 0.001);
  icu::UnicodeString text;
  _formatter->icu.format(milliseconds, text);
  std::string result;
  return text.toUTF8String(result);
}

std::optional<Date> DateFormatter::date(std::string_view text) const {
  const icu::UnicodeString given = unicode(text);
  icu::ParsePosition position;
  const UDate milliseconds = _formatter->icu.parse(given, position);
  // The library takes much that the pattern does not say: blanks, fewer or more digits, the 30th of February.
  icu::UnicodeString written;
  if (position.getIndex() == 0 || _formatter->icu.format(milliseconds, written) != given) return std::nullopt;
  // The fraction comes last, where it loses the least.
  const double seconds = std::floor(milliseconds / 1000);
  Date date = Date::fromSecondsSince1970(seconds);
  date.secondsSinceReferenceDate += (milliseconds - seconds * 1000) / 1000;
  return date;
}

}  // namespace kestrom::foundation

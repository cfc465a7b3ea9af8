#include "Platform/Foundation/Calendar.hpp"

#include <unicode/gregocal.h>
#include <unicode/timezone.h>

namespace kestrom::foundation {

std::int64_t calendarYear(Date date, const std::string& zone) {
  UErrorCode error = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(
      zone.empty() ? icu::TimeZone::createDefault() : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)),
      icu::Locale::getRoot(), error);
  calendar.setTime(date.secondsSince1970() * 1000, error);
  return calendar.get(UCAL_EXTENDED_YEAR, error);
}

}  // namespace kestrom::foundation

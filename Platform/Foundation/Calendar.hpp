#pragma once

#include "Kestrom/Platform/Date.hpp"

#include <cstdint>
#include <string>

namespace kestrom::foundation {

/// The Gregorian year of a date in a time zone, named as the IANA time zone database does ("Europe/Berlin"); the empty
/// name is the device's zone.
std::int64_t calendarYear(Date date, const std::string& zone = {});

}  // namespace kestrom::foundation

#pragma once

#include "Kestrom/Platform/Date.hpp"

#include <string>

namespace kestrom::sandbox {

/// The date in UTC with milliseconds, "2025-02-03T09:15:00.000Z", the form in which a kit reads the dates of answers.
std::string millisecondsText(foundation::Date date);

/// The present time.
foundation::Date now();

}  // namespace kestrom::sandbox

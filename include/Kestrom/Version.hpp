#pragma once

#include "Kestrom/Export.hpp"

namespace kestrom {

/// Version of the kit as a number, for a host that wants to compare.
KESTROM_API extern const double KestromVersionNumber;

/// Version of the kit as the text that tools look for in a binary; ends with a line feed. Lives as long as the process.
KESTROM_API extern const char* const KestromVersionString;

}  // namespace kestrom

#pragma once

#include "Kestrom/Export.hpp"

/// Both are found under their bare names in the shared library, as tools and other languages look for them.
extern "C" {

/// Version of the kit as a number, for a host that wants to compare.
KESTROM_API extern const double KestromVersionNumber;

/// Version of the kit as the text that tools look for in a binary; ends with a line feed.
KESTROM_API extern const char KestromVersionString[];

}  // extern "C"

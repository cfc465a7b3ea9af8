#pragma once

namespace kestrom {

/// Version of the kit as a number, for a host that wants to compare.
extern const double KestromVersionNumber;

/// Version of the kit as the text that tools look for in a binary; ends with a line feed. Lives as long as the process.
extern const char* const KestromVersionString;

}  // namespace kestrom

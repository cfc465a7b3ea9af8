#pragma once

#include <string>

namespace kestrom::foundation {

/// A new random UUID (RFC 4122, version 4) in its text form, upper case: "E621E1F8-C36C-495A-93FC-0C247A3E6E5F". Any
/// thread.
std::string makeUUIDString();

}  // namespace kestrom::foundation

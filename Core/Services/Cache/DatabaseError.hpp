#pragma once

#include <cstdint>
#include <string>

namespace kestrom::services {

/// Why a cached list could not be read or written. The cause is dropped: all failures are `unknown`.
enum class DatabaseError : std::uint8_t { unknown, objectNotFound };

inline std::string debugDescription(DatabaseError error) {
  return error == DatabaseError::unknown ? "DatabaseError.unknown" : "DatabaseError.objectNotFound";
}

}  // namespace kestrom::services

#pragma once

#include <cstdint>
#include <string>

namespace kestrom::usecases {

/// What can go wrong in a login beside the server and the way to it.
enum class LoginError : std::uint8_t {
  /// The store does not hold the case that was just put there.
  missingKestromId,
};

inline std::string debugDescription(LoginError) {
  return "LoginError.missingKestromId";
}

}  // namespace kestrom::usecases

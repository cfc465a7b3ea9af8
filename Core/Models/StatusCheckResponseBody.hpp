#pragma once

#include "Platform/Foundation/JSONCoding.hpp"

#include <string>

namespace kestrom::models {

/// The state of a case. Both texts are the server's own.
struct StatusCheckResponseBody {
  std::string expiration;
  std::string status;

  friend bool operator==(const StatusCheckResponseBody&, const StatusCheckResponseBody&) = default;
};

}  // namespace kestrom::models

namespace kestrom::foundation {

template <>
struct Coding<models::StatusCheckResponseBody> {
  static constexpr std::array kFields{
      field<&models::StatusCheckResponseBody::expiration>("expiration"),
      field<&models::StatusCheckResponseBody::status>("status"),
  };
};

}  // namespace kestrom::foundation

#pragma once

#include "Platform/Foundation/JSONCoding.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace kestrom::services {

/// What the server says of a failure. A body without a status code is none.
struct APIError {
  std::optional<std::string> message;
  std::int64_t statusCode = 0;
  std::optional<std::string> error;

  friend bool operator==(const APIError&, const APIError&) = default;
};

}  // namespace kestrom::services

namespace kestrom::foundation {

template <>
struct Coding<services::APIError> {
  static constexpr std::array kFields{
      field<&services::APIError::message>("message"),
      field<&services::APIError::statusCode>("statusCode"),
      field<&services::APIError::error>("error"),
  };
};

}  // namespace kestrom::foundation

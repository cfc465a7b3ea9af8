#pragma once

#include "Kestrom/Platform/HTTPHeaders.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <variant>

namespace kestrom::networking {

/// The head of an HTTP answer. Value type; any thread.
struct HTTPURLResponse {
  /// Where the answer came from.
  foundation::URL url;
  int statusCode = 0;
  HTTPHeaders headers;

  friend bool operator==(const HTTPURLResponse&, const HTTPURLResponse&) = default;
};

/// The head of an answer of another protocol, such as "file".
struct OtherURLResponse {
  foundation::URL url;

  friend bool operator==(const OtherURLResponse&, const OtherURLResponse&) = default;
};

using URLResponse = std::variant<HTTPURLResponse, OtherURLResponse>;

}  // namespace kestrom::networking

#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/HTTPHeaders.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <chrono>
#include <optional>
#include <string>

namespace kestrom::networking {

/// A request to a server. Value type; any thread.
struct URLRequest {
  foundation::URL url;
  std::string method = "GET";
  /// Without one the request has no content. An upload has its body in a file instead.
  std::optional<foundation::Bytes> body = std::nullopt;
  HTTPHeaders headers = {};
  /// How long nothing at all may come or go before the request fails.
  std::chrono::nanoseconds timeoutInterval = std::chrono::seconds(60);

  friend bool operator==(const URLRequest&, const URLRequest&) = default;
};

}  // namespace kestrom::networking

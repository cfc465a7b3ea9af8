#pragma once

#include <string>
#include <utility>

namespace kestrom {

/// The state of a case as the server tells it. Both texts are the server's own, handed on as they are.
struct KestromStatus {
  KestromStatus(std::string statusText, std::string expirationText)
      : status(std::move(statusText)), expiration(std::move(expirationText)) {}

  std::string status;
  std::string expiration;

  friend bool operator==(const KestromStatus&, const KestromStatus&) = default;
};

}  // namespace kestrom

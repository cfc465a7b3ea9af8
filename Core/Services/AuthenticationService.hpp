#pragma once

#include "Core/Models/LoginDTO.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::services {

/// Trades the two codes of an invitation for a token. Values and failures come on the main queue; a publisher may
/// outlive the service.
class AuthenticationService {
 public:
  virtual ~AuthenticationService() = default;

  /// Wrong codes are a status of the server's: `unauthenticated` or `wrongStatusResponse`. Remembers nothing.
  virtual reactive::Publisher<models::MobileLoginResponseBody, RESTError> login(
      models::MobileLoginRequestBody codes) const = 0;
};

}  // namespace kestrom::services

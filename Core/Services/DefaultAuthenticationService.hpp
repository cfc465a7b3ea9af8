#pragma once

#include "Core/Services/AuthenticationService.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Asks the server.
class DefaultAuthenticationService final : public AuthenticationService {
 public:
  explicit DefaultAuthenticationService(std::shared_ptr<const RESTService> restService)
      : _restService(std::move(restService)) {}

  reactive::Publisher<models::MobileLoginResponseBody, RESTError> login(
      models::MobileLoginRequestBody codes) const override;

 private:
  std::shared_ptr<const RESTService> _restService;
};

}  // namespace kestrom::services

#pragma once

#include "Core/Services/Networking/REST/RESTService.hpp"
#include "Core/Services/UserService.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Asks the server.
class DefaultUserService final : public UserService {
 public:
  explicit DefaultUserService(std::shared_ptr<const RESTService> restService) : _restService(std::move(restService)) {}

  reactive::Publisher<reactive::Nothing, RESTError> saveUserProfile(const std::string& organizationId,
                                                                    const std::string& kestromId) const override;
  reactive::Publisher<reactive::Nothing, RESTError> submitConsent(const foundation::URL& termsURL) const override;

 private:
  std::shared_ptr<const RESTService> _restService;
};

}  // namespace kestrom::services

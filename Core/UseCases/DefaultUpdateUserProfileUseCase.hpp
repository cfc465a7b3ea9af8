#pragma once

#include "Core/Services/UserService.hpp"
#include "Core/UseCases/UpdateUserProfileUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

/// Asks the service of users.
class DefaultUpdateUserProfileUseCase final : public UpdateUserProfileUseCase {
 public:
  explicit DefaultUpdateUserProfileUseCase(std::shared_ptr<const services::UserService> userService)
      : _userService(std::move(userService)) {}

  reactive::Publisher<reactive::Nothing, services::RESTError> execute(const std::string& organizationId,
                                                                      const std::string& kestromId) const override {
    return _userService->saveUserProfile(organizationId, kestromId);
  }

 private:
  std::shared_ptr<const services::UserService> _userService;
};

}  // namespace kestrom::usecases

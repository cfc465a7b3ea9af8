#pragma once

#include "Core/SDK/SessionStore.hpp"
#include "Core/Services/AuthenticationService.hpp"
#include "Core/Services/KestromObjectService.hpp"
#include "Core/UseCases/LoginUseCase.hpp"
#include "Core/UseCases/PostKestromEventUseCase.hpp"
#include "Core/UseCases/SetEventUserUseCase.hpp"
#include "Core/UseCases/UpdateUserProfileUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultLoginUseCase final : public LoginUseCase {
 public:
  struct Parts {
    std::shared_ptr<const services::AuthenticationService> authService;
    std::shared_ptr<const services::KestromObjectService> kestromService;
    std::shared_ptr<session::SessionStore> store;
    std::shared_ptr<const UpdateUserProfileUseCase> updateUserProfileUseCase;
    std::shared_ptr<SetEventUserUseCase> setEventUserUseCase;
    std::shared_ptr<PostKestromEventUseCase> postKestromEventUseCase;
  };

  explicit DefaultLoginUseCase(Parts parts) : _parts(std::move(parts)) {}

  reactive::Publisher<models::KestromObjectDetails, services::RESTError> execute(Request request) override;

 private:
  Parts _parts;
};

}  // namespace kestrom::usecases

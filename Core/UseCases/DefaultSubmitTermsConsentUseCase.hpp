#pragma once

#include "Core/Services/UserService.hpp"
#include "Core/UseCases/SubmitTermsConsentUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

/// Asks the service of users.
class DefaultSubmitTermsConsentUseCase final : public SubmitTermsConsentUseCase {
 public:
  explicit DefaultSubmitTermsConsentUseCase(std::shared_ptr<const services::UserService> userService)
      : _userService(std::move(userService)) {}

  reactive::Publisher<reactive::Nothing, services::RESTError> execute(const foundation::URL& termsURL) const override {
    return _userService->submitConsent(termsURL);
  }

 private:
  std::shared_ptr<const services::UserService> _userService;
};

}  // namespace kestrom::usecases

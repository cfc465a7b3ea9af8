#pragma once

#include "Core/UseCases/StatusCheckUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

/// Asks the service of cases.
class DefaultStatusCheckUseCase final : public StatusCheckUseCase {
 public:
  explicit DefaultStatusCheckUseCase(std::shared_ptr<const services::KestromObjectService> kestromObjectService)
      : _kestromObjectService(std::move(kestromObjectService)) {}

  reactive::Publisher<models::StatusCheckResponseBody, services::RESTError> execute(
      const std::string& zipCode, const std::string& accessCode) const override {
    return _kestromObjectService->statusCheck(zipCode, accessCode);
  }

 private:
  std::shared_ptr<const services::KestromObjectService> _kestromObjectService;
};

}  // namespace kestrom::usecases

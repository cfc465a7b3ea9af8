#pragma once

#include "Core/Services/Device/LocationService.hpp"
#include "Core/UseCases/RequestLocationPermissionUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultRequestLocationPermissionUseCase final : public RequestLocationPermissionUseCase {
 public:
  explicit DefaultRequestLocationPermissionUseCase(std::shared_ptr<services::LocationService> locationService)
      : _locationService(std::move(locationService)) {}

  reactive::Publisher<bool, reactive::Never> execute() override;

 private:
  std::shared_ptr<services::LocationService> _locationService;
};

}  // namespace kestrom::usecases

#pragma once

#include "Core/Services/Device/LocationService.hpp"
#include "Core/UseCases/RequestLocationPermissionUseCase.hpp"
#include "Core/UseCases/RequestPermissionAndGetCoordinatesUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultRequestPermissionAndGetCoordinatesUseCase final : public RequestPermissionAndGetCoordinatesUseCase {
 public:
  DefaultRequestPermissionAndGetCoordinatesUseCase(
      std::shared_ptr<RequestLocationPermissionUseCase> requestPermissionUseCase,
      std::shared_ptr<services::LocationService> locationService)
      : _requestPermissionUseCase(std::move(requestPermissionUseCase)), _locationService(std::move(locationService)) {}

  reactive::Publisher<std::optional<services::LocationCoordinate>, reactive::Never> execute() override;

 private:
  std::shared_ptr<RequestLocationPermissionUseCase> _requestPermissionUseCase;
  std::shared_ptr<services::LocationService> _locationService;
};

}  // namespace kestrom::usecases

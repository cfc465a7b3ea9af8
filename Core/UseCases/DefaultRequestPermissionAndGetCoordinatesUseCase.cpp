#include "Core/UseCases/DefaultRequestPermissionAndGetCoordinatesUseCase.hpp"

#include "Platform/Reactive/Sources.hpp"

namespace kestrom::usecases {

using reactive::Never;
using reactive::Publisher;
using services::LocationCoordinate;
using services::LocationService;

Publisher<std::optional<LocationCoordinate>, Never> DefaultRequestPermissionAndGetCoordinatesUseCase::execute() {
  using Coordinate = std::optional<LocationCoordinate>;
  return _requestPermissionUseCase->execute().flatMap(
      [locationService = _locationService](bool isAuthorized) -> Publisher<Coordinate, Never> {
        if (!isAuthorized) return reactive::just(Coordinate());
        return locationService->location()
            .map([](const LocationService::Reading& reading) {
              return Coordinate({reading.location.latitude, reading.location.longitude, reading.isPrecise});
            })
            .replaceError(std::nullopt);
      });
}

}  // namespace kestrom::usecases

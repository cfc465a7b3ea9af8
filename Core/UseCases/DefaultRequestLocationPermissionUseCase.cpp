#include "Core/UseCases/DefaultRequestLocationPermissionUseCase.hpp"

#include "Platform/Reactive/Sources.hpp"

#include <optional>

namespace kestrom::usecases {

reactive::Publisher<bool, reactive::Never> DefaultRequestLocationPermissionUseCase::execute() {
  return reactive::deferred([locationService = _locationService] {
    locationService->requestAuthorization();
    return locationService->isAuthorizedPublisher()
        .compactMap([](std::optional<bool> isAuthorized) { return isAuthorized; })
        .first();
  });
}

}  // namespace kestrom::usecases

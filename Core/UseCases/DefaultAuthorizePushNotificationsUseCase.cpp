#include "Core/UseCases/DefaultAuthorizePushNotificationsUseCase.hpp"

#include "Platform/Reactive/Sources.hpp"

namespace kestrom::usecases {

using reactive::Never;

reactive::Publisher<bool, Never> DefaultAuthorizePushNotificationsUseCase::execute() {
  return reactive::deferred([notificationsService = _notificationsService] {
    return reactive::future<bool, Never>([&](reactive::Promise<bool, Never> promise) {
      notificationsService->requestAuthorization([promise](bool isGranted) { promise(isGranted); });
    });
  });
}

}  // namespace kestrom::usecases

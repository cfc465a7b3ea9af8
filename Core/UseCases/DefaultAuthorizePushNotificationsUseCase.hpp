#pragma once

#include "Core/Services/Device/NotificationsService.hpp"
#include "Core/UseCases/AuthorizePushNotificationsUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultAuthorizePushNotificationsUseCase final : public AuthorizePushNotificationsUseCase {
 public:
  explicit DefaultAuthorizePushNotificationsUseCase(
      std::shared_ptr<services::NotificationsService> notificationsService)
      : _notificationsService(std::move(notificationsService)) {}

  reactive::Publisher<bool, reactive::Never> execute() override;

 private:
  std::shared_ptr<services::NotificationsService> _notificationsService;
};

}  // namespace kestrom::usecases

#pragma once

#include "Core/Services/Device/NotificationsService.hpp"
#include "Kestrom/Platform/UserNotificationCenter.hpp"

namespace kestrom::services {

/// May go while completions wait: they belong to the center.
class DefaultNotificationsService final : public NotificationsService {
 public:
  explicit DefaultNotificationsService(device::UserNotificationCenter& center) : _center(center) {}

  void isDetermined(Completion completion) const override;
  void requestAuthorization(Completion completion) override;

 private:
  device::UserNotificationCenter& _center;
};

}  // namespace kestrom::services

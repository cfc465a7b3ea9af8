#include "Core/Services/Device/DefaultNotificationsService.hpp"

#include <utility>

namespace kestrom::services {

void DefaultNotificationsService::isDetermined(Completion completion) const {
  _center.getNotificationSettings([completion = std::move(completion)](device::NotificationSettings settings) mutable {
    completion(settings.authorizationStatus != device::NotificationAuthorizationStatus::notDetermined);
  });
}

void DefaultNotificationsService::requestAuthorization(Completion completion) {
  _center.requestAuthorization({.badge = true, .sound = true, .alert = true}, std::move(completion));
}

}  // namespace kestrom::services

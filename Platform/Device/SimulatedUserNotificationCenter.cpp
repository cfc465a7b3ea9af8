#include "Platform/Device/SimulatedUserNotificationCenter.hpp"

#include <utility>

namespace kestrom::device {

using Status = NotificationAuthorizationStatus;

void SimulatedUserNotificationCenter::getNotificationSettings(SettingsCompletion completion) {
  _answers.store(_mainQueue->scheduleAfter(
      reactive::Duration(0), [this, completion = std::move(completion)]() mutable { completion({_status}); }));
}

void SimulatedUserNotificationCenter::requestAuthorization(NotificationOptions, AuthorizationCompletion completion) {
  _answers.store(_mainQueue->scheduleAfter(reactive::Duration(0), [this, completion = std::move(completion)]() mutable {
    if (_status == Status::notDetermined) _status = Status::authorized;
    completion(_status == Status::authorized);
  }));
}

}  // namespace kestrom::device

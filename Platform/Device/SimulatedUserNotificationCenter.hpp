#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Kestrom/Platform/UserNotificationCenter.hpp"

#include <memory>
#include <utility>

namespace kestrom::device {

/// The notifications of a machine that shows none: the host says what the person has answered, and may say otherwise at
/// any time. A person who was not asked yet grants. Owned by the host's platform.
class SimulatedUserNotificationCenter final : public UserNotificationCenter {
 public:
  /// Completions are called on `mainQueue`.
  SimulatedUserNotificationCenter(NotificationAuthorizationStatus status,
                                  std::shared_ptr<reactive::Scheduler> mainQueue)
      : _status(status), _mainQueue(std::move(mainQueue)) {}

  void setStatus(NotificationAuthorizationStatus status) { _status = status; }

  void getNotificationSettings(SettingsCompletion completion) override;
  void requestAuthorization(NotificationOptions options, AuthorizationCompletion completion) override;

 private:
  NotificationAuthorizationStatus _status;
  std::shared_ptr<reactive::Scheduler> _mainQueue;
  reactive::Cancellables _answers;
};

}  // namespace kestrom::device

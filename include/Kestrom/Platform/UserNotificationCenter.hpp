#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <functional>

namespace kestrom::device {

/// What the person lets the application show while it does not run.
enum class NotificationAuthorizationStatus : std::uint8_t { notDetermined, denied, authorized };

struct NotificationSettings {
  NotificationAuthorizationStatus authorizationStatus = NotificationAuthorizationStatus::notDetermined;

  friend bool operator==(const NotificationSettings&, const NotificationSettings&) = default;
};

/// The ways in which a notification may show itself.
struct NotificationOptions {
  bool badge = false;
  bool sound = false;
  bool alert = false;

  friend bool operator==(const NotificationOptions&, const NotificationOptions&) = default;
};

/// The permission for push notifications. Used on the main queue alone. Each completion is called at most once, on the
/// main queue, never inside the call that it was given to; those that wait are dropped with the center.
class KESTROM_API UserNotificationCenter {
 public:
  using SettingsCompletion = std::move_only_function<void(NotificationSettings)>;
  using AuthorizationCompletion = std::move_only_function<void(bool isGranted)>;

  virtual ~UserNotificationCenter() = default;

  virtual void getNotificationSettings(SettingsCompletion completion) = 0;

  /// Asks the person, if that was never done; otherwise completes with the answer of then.
  virtual void requestAuthorization(NotificationOptions options, AuthorizationCompletion completion) = 0;
};

}  // namespace kestrom::device

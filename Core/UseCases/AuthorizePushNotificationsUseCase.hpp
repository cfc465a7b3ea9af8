#pragma once

#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::usecases {

/// Asks whether the host may send notifications.
class AuthorizePushNotificationsUseCase {
 public:
  virtual ~AuthorizePushNotificationsUseCase() = default;

  /// Asks the person at the subscription and gives whether push notifications are granted, then the end. Main queue;
  /// may outlive the use case.
  virtual reactive::Publisher<bool, reactive::Never> execute() = 0;
};

}  // namespace kestrom::usecases

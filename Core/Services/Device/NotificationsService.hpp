#pragma once

#include <functional>

namespace kestrom::services {

/// The permission for push notifications. Main queue, completions too.
class NotificationsService {
 public:
  using Completion = std::move_only_function<void(bool)>;

  virtual ~NotificationsService() = default;

  /// Completes with whether the person was asked already.
  virtual void isDetermined(Completion completion) const = 0;
  /// Asks the person, unless that was done before, and completes with whether it is granted.
  virtual void requestAuthorization(Completion completion) = 0;
};

}  // namespace kestrom::services

#pragma once

namespace kestrom::services {

/// Measures how long the person really spends in the flow: the time in the background does not count. Main queue.
class UserSessionTracker {
 public:
  virtual ~UserSessionTracker() = default;

  /// Begins again at 0.
  virtual void startTracking() = 0;
  /// The time stands still from now on, until the next start.
  virtual void stopTracking() = 0;
  /// Seconds so far.
  virtual double activeTime() const = 0;
};

}  // namespace kestrom::services

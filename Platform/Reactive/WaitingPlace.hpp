#pragma once

#include "Kestrom/Platform/Scheduler.hpp"

#include <optional>

namespace kestrom::reactive {

/// Where the thread of an idle main queue can wait for what would otherwise wake another thread first and that thread
/// wake it: the answers of a server, for one.
class WaitingPlace {
 public:
  virtual ~WaitingPlace() = default;

  /// Waits until `wake`, or until the duration is over (absent: for ever), or less, and does what has come to be done
  /// there. False, at once, when nobody can wait there now. One thread at a time.
  virtual bool wait(std::optional<Duration> duration) = 0;

  /// Ends a wait, or the next one at once. Any thread.
  virtual void wake() = 0;
};

}  // namespace kestrom::reactive

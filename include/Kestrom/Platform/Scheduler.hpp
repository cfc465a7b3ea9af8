#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/AnyCancellable.hpp"

#include <chrono>
#include <functional>

namespace kestrom::reactive {

using Duration = std::chrono::nanoseconds;

/// The clock of schedulers: it never goes back, and where it starts is the scheduler's own affair.
struct SchedulerClock {
  using duration = Duration;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<SchedulerClock, duration>;
  static constexpr bool is_steady = true;
};
using TimePoint = SchedulerClock::time_point;

using Work = std::move_only_function<void()>;

/// Runs work later, one piece after the other: in the order of the due times, of equal ones in the order of their
/// scheduling. All members may be called from any thread. Outlives whatever is scheduled on it and whoever schedules.
class KESTROM_API Scheduler {
 public:
  virtual ~Scheduler() = default;

  virtual TimePoint now() const = 0;

  /// Runs `work` as soon as what was scheduled before it has run; never inside the call.
  virtual void schedule(Work work) = 0;

  /// Runs `work` once `duration` has passed. Dropping the token drops the work, on whichever thread that happens.
  virtual AnyCancellable scheduleAfter(Duration duration, Work work) = 0;
};

}  // namespace kestrom::reactive

#pragma once

#include "Platform/Reactive/WorkQueue.hpp"

#include <atomic>

namespace kestrom::reactive {

/// A scheduler whose time moves only when told, and stands still while work runs: the clock of tests. Scheduling may
/// come from any thread; the running belongs to the one that calls `advance` and `runReady`.
class ManualScheduler final : public Scheduler {
 public:
  explicit ManualScheduler(TimePoint start = TimePoint()) : _now(start) {}
  ~ManualScheduler() override { _queue->clear(); }

  TimePoint now() const override { return _now.load(); }
  void schedule(Work work) override;
  AnyCancellable scheduleAfter(Duration duration, Work work) override;

  /// Runs what is due now, and what that schedules for now.
  void runReady();

  /// Moves the time on by `duration` and runs everything that falls due on the way, each at its moment.
  void advance(Duration duration);

  /// Work that has not run: at the end of a test a leak.
  std::size_t pendingCount() const { return _queue->size(); }

 private:
  Ref<WorkQueue> _queue = makeRef<WorkQueue>();
  std::atomic<TimePoint> _now;
};

}  // namespace kestrom::reactive

#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Scheduler.hpp"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace kestrom::reactive {

class WaitingPlace;
class WorkQueue;

/// The steady clock of the system.
KESTROM_API TimePoint steadyNow();

/// The loop that owns the kit's state: work is scheduled on it from any thread and runs on the one that pumps it. A
/// host either gives it a thread (`run`) or owns the loop itself: it calls `runDue` whenever the wake-up callback asks
/// for it and at `nextDueTime`.
class KESTROM_API MainQueue final : public Scheduler {
 public:
  explicit MainQueue(std::function<TimePoint()> now = steadyNow);
  ~MainQueue() override;

  TimePoint now() const override { return _clock(); }
  void schedule(Work work) override;
  AnyCancellable scheduleAfter(Duration duration, Work work) override;

  /// Runs work as it falls due until `stop`, on the calling thread.
  void run();
  /// Ends `run` after the work that is running, or the next one at once. Any thread.
  void stop();

  /// Runs what is due at this moment, without waiting. What is scheduled meanwhile is left for the next call, so that
  /// work that schedules itself does not keep the host.
  void runDue();
  std::optional<TimePoint> nextDueTime() const;

  /// `wakeUp` is called on the scheduling thread whenever something was scheduled; it should only wake the host's loop.
  /// To be set before the first use.
  void setWakeUp(std::function<void()> wakeUp) { _wakeUp = std::move(wakeUp); }

  /// Has `run` wait there when it has nothing to do, as long as the place exists. The first place stays; the others are
  /// for the case that it goes. For the kit's own platform. Any thread.
  void offer(std::weak_ptr<WaitingPlace> place);

 private:
  void notify();
  void wait();
  std::shared_ptr<WaitingPlace> place() const;

  Ref<WorkQueue> _queue;
  std::function<TimePoint()> _clock;
  std::function<void()> _wakeUp;
  mutable std::mutex _mutex;
  std::condition_variable _changed;
  bool _hasChanged = false;
  bool _isStopping = false;
  /// The thread of `run`.
  std::thread::id _runner;
  std::vector<std::weak_ptr<WaitingPlace>> _places;
};

}  // namespace kestrom::reactive

#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Scheduler.hpp"

#include <functional>
#include <memory>
#include <optional>

namespace kestrom::reactive {

class WaitingPlace;

/// The steady clock of the system.
KESTROM_API TimePoint steadyNow();

/// The loop that owns the kit's state: work is scheduled on it from any thread and runs on the one that pumps it. A
/// host either gives it a thread (`run`) or owns the loop itself: it calls `runDue` whenever the wake-up callback asks
/// for it and at `nextDueTime`.
class KESTROM_API MainQueue final : public Scheduler {
 public:
  using Clock = std::function<TimePoint()>;

  explicit MainQueue(Clock now = steadyNow);
  ~MainQueue() override;

  TimePoint now() const override { return _clock(); }
  /// May still be on its way back, on another thread, when the work has run and this object is gone: an owner who has
  /// seen the last work run may destroy the queue.
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
  void setWakeUp(std::function<void()> wakeUp);

  /// Has `run` wait there when it has nothing to do, as long as the place exists. The first place stays; the others are
  /// for the case that it goes. For the kit's own platform. Any thread.
  void offer(std::weak_ptr<WaitingPlace> place);

 private:
  class State;

  Ref<State> _state;
  Clock _clock;
};

}  // namespace kestrom::reactive

#pragma once

#include "Kestrom/Platform/MainQueue.hpp"

#include <string>
#include <thread>

namespace kestrom::reactive {

/// A queue with a thread of its own, for work that must not hold up the main queue. What has not run when it is
/// destroyed is dropped; what is running is waited for, so it must not be destroyed from its own work.
class SerialQueue final : public Scheduler {
 public:
  /// `label` names the thread in a debugger, fifteen characters of it.
  explicit SerialQueue(const std::string& label);
  ~SerialQueue() override;

  TimePoint now() const override { return _queue.now(); }
  void schedule(Work work) override { _queue.schedule(std::move(work)); }
  AnyCancellable scheduleAfter(Duration duration, Work work) override {
    return _queue.scheduleAfter(duration, std::move(work));
  }

  /// See `MainQueue::offer`.
  void offer(std::weak_ptr<WaitingPlace> place) { _queue.offer(std::move(place)); }

 private:
  MainQueue _queue;
  std::thread _thread;
};

}  // namespace kestrom::reactive

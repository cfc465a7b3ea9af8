#include "Kestrom/Platform/MainQueue.hpp"

#include "Platform/Reactive/WorkQueue.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::reactive {

TimePoint steadyNow() {
  return TimePoint(std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch()));
}

MainQueue::MainQueue(std::function<TimePoint()> now) : _queue(makeRef<WorkQueue>()), _clock(std::move(now)) {}

MainQueue::~MainQueue() {
  _queue->clear();
}

std::optional<TimePoint> MainQueue::nextDueTime() const {
  return _queue->nextDue();
}

void MainQueue::schedule(Work work) {
  _queue->add(now(), std::move(work));
  notify();
}

AnyCancellable MainQueue::scheduleAfter(Duration duration, Work work) {
  AnyCancellable token = _queue->addCancellable(now() + std::max(duration, Duration(0)), std::move(work));
  notify();
  return token;
}

void MainQueue::notify() {
  {
    const std::lock_guard lock(_mutex);
    _hasChanged = true;
  }
  _changed.notify_one();
  if (_wakeUp) _wakeUp();
}

void MainQueue::run() {
  while (true) {
    {
      std::unique_lock lock(_mutex);
      if (std::exchange(_isStopping, false)) return;
      _hasChanged = false;
    }
    if (auto due = _queue->takeDue(now())) {
      due->second();
      continue;
    }
    const auto next = _queue->nextDue();
    std::unique_lock lock(_mutex);
    const auto isWoken = [this] { return _hasChanged || _isStopping; };
    if (next) {
      _changed.wait_for(lock, *next - now(), isWoken);
    } else {
      _changed.wait(lock, isWoken);
    }
  }
}

void MainQueue::stop() {
  {
    const std::lock_guard lock(_mutex);
    _isStopping = true;
  }
  _changed.notify_one();
}

void MainQueue::runDue() {
  const TimePoint time = now();
  const std::uint64_t end = _queue->nextNumber();
  while (auto due = _queue->takeDue(time, end)) due->second();
}

}  // namespace kestrom::reactive

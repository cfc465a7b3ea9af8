#include "Kestrom/Platform/MainQueue.hpp"

#include "Platform/Reactive/WaitingPlace.hpp"
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
  if (_wakeUp) _wakeUp();
}

AnyCancellable MainQueue::scheduleAfter(Duration duration, Work work) {
  AnyCancellable token = _queue->addCancellable(now() + std::max(duration, Duration(0)), std::move(work));
  notify();
  if (_wakeUp) _wakeUp();
  return token;
}

void MainQueue::offer(std::weak_ptr<WaitingPlace> place) {
  {
    const std::lock_guard lock(_mutex);
    std::erase_if(_places, [](const auto& known) { return known.expired(); });
    _places.push_back(std::move(place));
  }
  notify();
}

/// The first that exists. To be called with the mutex held.
std::shared_ptr<WaitingPlace> MainQueue::place() const {
  for (const auto& known : _places) {
    if (auto place = known.lock()) return place;
  }
  return nullptr;
}

void MainQueue::notify() {
  std::unique_lock lock(_mutex);
  if (_runner == std::this_thread::get_id()) {
    _hasChanged = true;
  } else {
    // The place first: once it is called, the thread of `run` comes by.
    if (const auto waitedIn = place()) {
      lock.unlock();
      waitedIn->wake();
      lock.lock();
    }
    _hasChanged = true;
    _changed.notify_one();
  }
}

void MainQueue::run() {
  {
    const std::lock_guard lock(_mutex);
    _runner = std::this_thread::get_id();
  }
  while (true) {
    {
      const std::lock_guard lock(_mutex);
      if (std::exchange(_isStopping, false)) break;
      _hasChanged = false;
    }
    if (auto due = _queue->takeDue(now())) {
      due->second();
    } else {
      wait();
    }
  }
  const std::lock_guard lock(_mutex);
  _runner = {};
}

/// Returns when there may be something to do.
void MainQueue::wait() {
  const auto next = _queue->nextDue();
  std::shared_ptr<WaitingPlace> place;
  {
    const std::lock_guard lock(_mutex);
    if (_hasChanged) return;
    place = this->place();
  }
  // Who changes something from here on wakes the place.
  if (place && place->wait(next ? std::optional(std::max(*next - now(), Duration(0))) : std::nullopt)) return;
  std::unique_lock lock(_mutex);
  const auto isWoken = [this] { return _hasChanged; };
  if (next) {
    _changed.wait_for(lock, *next - now(), isWoken);
  } else {
    _changed.wait(lock, isWoken);
  }
}

void MainQueue::stop() {
  {
    const std::lock_guard lock(_mutex);
    _isStopping = true;
  }
  notify();
}

void MainQueue::runDue() {
  const TimePoint time = now();
  const std::uint64_t end = _queue->nextNumber();
  while (auto due = _queue->takeDue(time, end)) due->second();
}

}  // namespace kestrom::reactive

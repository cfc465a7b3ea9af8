#include "Kestrom/Platform/MainQueue.hpp"

#include "Platform/Reactive/WaitingPlace.hpp"
#include "Platform/Reactive/WorkQueue.hpp"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace kestrom::reactive {

TimePoint steadyNow() {
  return TimePoint(std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch()));
}

/// All that a call needs from another thread, which may find the queue gone at its end: the work that it scheduled was
/// the last that the owner waited for.
class MainQueue::State final : public RefCounted {
 public:
  void notify();
  void notifyAndWakeUp() {
    notify();
    if (wakeUp) wakeUp();
  }
  /// Returns when there may be something to do.
  void wait(const Clock& now);
  void begin();
  void end();
  /// True once `stop` was called; then not any more.
  bool takeStop();
  void stop();
  void offer(std::weak_ptr<WaitingPlace> place);

  const Ref<WorkQueue> work = makeRef<WorkQueue>();
  std::function<void()> wakeUp;

 private:
  std::shared_ptr<WaitingPlace> place() const;

  mutable std::mutex _mutex;
  std::condition_variable _changed;
  bool _hasChanged = false;
  bool _isStopping = false;
  /// The thread of `run`.
  std::thread::id _runner;
  std::vector<std::weak_ptr<WaitingPlace>> _places;
};

void MainQueue::State::offer(std::weak_ptr<WaitingPlace> place) {
  {
    const std::lock_guard lock(_mutex);
    std::erase_if(_places, [](const auto& known) { return known.expired(); });
    _places.push_back(std::move(place));
  }
  notify();
}

/// The first that exists. To be called with the mutex held.
std::shared_ptr<WaitingPlace> MainQueue::State::place() const {
  for (const auto& known : _places) {
    if (auto place = known.lock()) return place;
  }
  return nullptr;
}

void MainQueue::State::notify() {
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

void MainQueue::State::wait(const Clock& now) {
  const auto next = work->nextDue();
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

void MainQueue::State::begin() {
  const std::lock_guard lock(_mutex);
  _runner = std::this_thread::get_id();
}

void MainQueue::State::end() {
  const std::lock_guard lock(_mutex);
  _runner = {};
}

bool MainQueue::State::takeStop() {
  const std::lock_guard lock(_mutex);
  _hasChanged = false;
  return std::exchange(_isStopping, false);
}

void MainQueue::State::stop() {
  {
    const std::lock_guard lock(_mutex);
    _isStopping = true;
  }
  notify();
}

MainQueue::MainQueue(Clock now) : _state(makeRef<State>()), _clock(std::move(now)) {}

MainQueue::~MainQueue() {
  _state->work->clear();
}

void MainQueue::setWakeUp(std::function<void()> wakeUp) {
  _state->wakeUp = std::move(wakeUp);
}

std::optional<TimePoint> MainQueue::nextDueTime() const {
  return _state->work->nextDue();
}

void MainQueue::schedule(Work work) {
  const Ref<State> state = _state;
  state->work->add(now(), std::move(work));
  state->notifyAndWakeUp();
}

AnyCancellable MainQueue::scheduleAfter(Duration duration, Work work) {
  const Ref<State> state = _state;
  AnyCancellable token = state->work->addCancellable(now() + std::max(duration, Duration(0)), std::move(work));
  state->notifyAndWakeUp();
  return token;
}

void MainQueue::offer(std::weak_ptr<WaitingPlace> place) {
  _state->offer(std::move(place));
}

void MainQueue::run() {
  _state->begin();
  while (!_state->takeStop()) {
    if (auto due = _state->work->takeDue(now())) {
      due->second();
    } else {
      _state->wait(_clock);
    }
  }
  _state->end();
}

void MainQueue::stop() {
  _state->stop();
}

void MainQueue::runDue() {
  const TimePoint time = now();
  const std::uint64_t end = _state->work->nextNumber();
  while (auto due = _state->work->takeDue(time, end)) due->second();
}

}  // namespace kestrom::reactive

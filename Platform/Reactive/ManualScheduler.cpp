#include "Platform/Reactive/ManualScheduler.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::reactive {

void ManualScheduler::schedule(Work work) {
  _queue->add(now(), std::move(work));
}

AnyCancellable ManualScheduler::scheduleAfter(Duration duration, Work work) {
  return _queue->addCancellable(now() + std::max(duration, Duration(0)), std::move(work));
}

void ManualScheduler::runReady() {
  advance(Duration(0));
}

void ManualScheduler::advance(Duration duration) {
  const TimePoint target = now() + std::max(duration, Duration(0));
  while (auto due = _queue->takeDue(target)) {
    _now = std::max(now(), due->first);
    due->second();
  }
  _now = target;
}

}  // namespace kestrom::reactive

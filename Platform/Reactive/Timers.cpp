#include "Platform/Reactive/Timers.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::reactive {

namespace {

// Below it a clock that is moved by seconds would not come to an end.
constexpr Duration kShortestInterval = std::chrono::milliseconds(1);

}  // namespace

struct Timers::Repeating : RefCounted {
  Repeating(Scheduler& on, Duration every, std::move_only_function<void(TimePoint)> then)
      : scheduler(on), interval(std::max(every, kShortestInterval)), due(on.now() + interval), work(std::move(then)) {}

  Scheduler& scheduler;
  Duration interval;
  TimePoint due;
  std::move_only_function<void(TimePoint)> work;
};

Ref<Timers> Timers::make(const Ref<Scope>& scope) {
  Ref<Timers> timers = makeRef<Timers>();
  scope->add([timers] { timers->end(); });
  return timers;
}

void Timers::start(Scheduler& scheduler, Duration duration, Work work) {
  std::uint64_t id = 0;
  {
    const std::lock_guard lock(_mutex);
    if (_hasEnded) return;
    id = ++_lastId;
    _tokens.try_emplace(id);
  }
  AnyCancellable token =
      scheduler.scheduleAfter(duration, [self = Ref<Timers>(this), id, work = std::move(work)]() mutable {
        self->forget(id);
        work();
      });
  const std::lock_guard lock(_mutex);
  const auto place = _tokens.find(id);
  // Gone when the work has run in the meantime, or all was cancelled: then the token is dropped here.
  if (place != _tokens.end()) place->second = std::move(token);
}

void Timers::startRepeating(Scheduler& scheduler, Duration interval, std::move_only_function<void(TimePoint)> work) {
  scheduleNext(makeRef<Repeating>(scheduler, interval, std::move(work)));
}

void Timers::scheduleNext(const Ref<Repeating>& repeating) {
  const Duration left = std::max(repeating->due - repeating->scheduler.now(), Duration(0));
  start(repeating->scheduler, left, [this, repeating] {
    const TimePoint due = repeating->due;
    const TimePoint now = repeating->scheduler.now();
    repeating->due += repeating->interval * std::max<Duration::rep>(1, (now - due) / repeating->interval + 1);
    // Before the work, which may cancel the rest.
    scheduleNext(repeating);
    repeating->work(due);
  });
}

void Timers::end() {
  {
    const std::lock_guard lock(_mutex);
    _hasEnded = true;
  }
  cancelAll();
}

void Timers::cancelAll() {
  std::map<std::uint64_t, AnyCancellable> tokens;
  const std::lock_guard lock(_mutex);
  tokens = std::exchange(_tokens, {});
}

void Timers::forget(std::uint64_t id) {
  AnyCancellable dropped;
  const std::lock_guard lock(_mutex);
  const auto place = _tokens.find(id);
  if (place == _tokens.end()) return;
  dropped = std::move(place->second);
  _tokens.erase(place);
}

}  // namespace kestrom::reactive

#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Reactive/Scope.hpp"

#include <cstdint>
#include <map>
#include <mutex>

namespace kestrom::reactive {

/// The timers of one stage of one subscription: those that still run when the scope is cancelled are dropped. Any
/// thread.
class Timers : public RefCounted {
 public:
  static Ref<Timers> make(const Ref<Scope>& scope);

  /// Drops `work` if the scope has ended: a value may still be on its way down then.
  void start(Scheduler& scheduler, Duration duration, Work work);

  /// Runs `work` every `interval`, the first time after one. Each is due one interval after the one before was due,
  /// however late that one ran; intervals that were missed as a whole are left out. A millisecond is the shortest.
  void startRepeating(Scheduler& scheduler, Duration interval, std::move_only_function<void(TimePoint due)> work);

  void cancelAll();

 private:
  struct Repeating;

  void end();
  void forget(std::uint64_t id);
  void scheduleNext(const Ref<Repeating>& repeating);

  std::mutex _mutex;
  std::map<std::uint64_t, AnyCancellable> _tokens;
  std::uint64_t _lastId = 0;
  bool _hasEnded = false;
};

}  // namespace kestrom::reactive

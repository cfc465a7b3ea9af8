#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Ref.hpp"

#include <functional>
#include <utility>
#include <vector>

namespace kestrom::reactive {

/// What a token can end.
class KESTROM_API CancelTarget : public RefCounted {
 public:
  /// Any thread, any number of times.
  virtual void cancel() = 0;
  /// Whether cancelling would do nothing any more.
  virtual bool isDone() const = 0;
};

/// The token of something that runs; ends it when dropped. After `cancel` has returned nothing more is delivered, not
/// even what is already queued: a delivery that runs on another thread at that moment is waited for, one that runs on
/// this very thread is the last. So a delivery must not wait for a thread that cancels it. A cancel from within a
/// delivery of another subscription does not wait, since that one may be cancelling this one. What it ends may promise
/// less: a session's task does not wait for its completion.
class [[nodiscard]] KESTROM_API AnyCancellable {
 public:
  AnyCancellable() = default;
  explicit AnyCancellable(Ref<CancelTarget> target) : _target(std::move(target)) {}
  /// Runs `cancel` at the first cancelling, on the thread that cancels.
  explicit AnyCancellable(std::move_only_function<void()> cancel);
  AnyCancellable(AnyCancellable&&) noexcept = default;
  AnyCancellable& operator=(AnyCancellable&& other) noexcept {
    AnyCancellable old(std::exchange(_target, std::exchange(other._target, nullptr)));
    return *this;
  }
  ~AnyCancellable() { cancel(); }

  void cancel() {
    if (const Ref<CancelTarget> target = std::exchange(_target, nullptr)) target->cancel();
  }

  bool isDone() const { return !_target || _target->isDone(); }

 private:
  Ref<CancelTarget> _target;
};

/// The tokens that an object holds: they end with it. Used by one thread. Forgets by itself what is done.
class KESTROM_API Cancellables {
 public:
  Cancellables() = default;
  Cancellables(const Cancellables&) = delete;
  Cancellables& operator=(const Cancellables&) = delete;
  /// What cancelling stores here meanwhile ends too.
  ~Cancellables();

  void store(AnyCancellable cancellable);
  void cancelAll();
  /// Those that still run.
  std::size_t count() const;

 private:
  std::vector<AnyCancellable> _held;
  std::size_t _pruneAt = 16;
};

}  // namespace kestrom::reactive

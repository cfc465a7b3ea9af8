#pragma once

#include "Kestrom/Platform/AnyCancellable.hpp"
#include "Kestrom/Platform/SingleThreaded.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace kestrom::reactive {

/// The life of one subscription: sources and stages that hold something for it leave here what releases it. Ends once,
/// by being cancelled or by finishing. All members may be called from any thread.
class Scope : public CancelTarget {
 public:
  using Teardown = std::move_only_function<void()>;
  using TeardownId = std::uint64_t;

  bool isCancelled() const noexcept { return _isCancelled.load(std::memory_order_seq_cst); }
  bool isDone() const override { return isCancelled(); }

  /// Runs what is left here, newest first, on this thread, after a delivery on another thread has ended. From within a
  /// delivery, of whatever scope, that is not waited for: the other may be cancelling this one.
  void cancel() override;

  /// Ends without running anything: all that was held is done.
  void finish();

  /// Leaves `teardown` until `remove`; runs it at once if the scope has ended.
  TeardownId add(Teardown teardown);
  void remove(TeardownId id);

  /// A scope that ends with this one, or earlier by itself: for a part of a chain that ends before the rest.
  static Ref<Scope> makeChild(const Ref<Scope>& parent);

  /// Runs `deliver` unless the scope has ended; `cancel` on other threads waits for its end. Deliveries of one scope
  /// come one after the other.
  template <class Deliver>
  void whileNotCancelled(Deliver deliver) {
    const std::thread::id self = std::this_thread::get_id();
    const bool isOuter = _deliverer.load(std::memory_order_relaxed) != self;
    // Cancelling sets its mark and then looks for a deliverer; delivering does it the other way round, so that at least
    // one of the two sees the other. Without a second thread the order costs nothing.
    if (isOuter) {
      if (isSingleThreaded()) {
        _deliverer.store(self, std::memory_order_relaxed);
      } else {
        _deliverer.store(self, std::memory_order_seq_cst);
      }
      ++_deliveriesOfThisThread;
    }
    if (!isCancelled()) deliver();
    if (isOuter) {
      --_deliveriesOfThisThread;
      _deliverer.store({}, std::memory_order_release);
    }
  }

 private:
  static constinit inline thread_local int _deliveriesOfThisThread = 0;

  void detachFromParent();
  void awaitDelivery() const;

  std::atomic<bool> _isCancelled = false;
  std::atomic<std::thread::id> _deliverer;
  std::mutex _mutex;
  std::vector<std::pair<TeardownId, Teardown>> _teardowns;
  TeardownId _lastId = 0;
  std::atomic<bool> _hasParent = false;
  Ref<Scope> _parent;
  TeardownId _idInParent = 0;
};

}  // namespace kestrom::reactive

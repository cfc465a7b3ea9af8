#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace kestrom::sandbox {

/// Tells waiting threads that the server ends. Any thread.
class StopSignal {
 public:
  void raise() {
    {
      const std::lock_guard lock(_mutex);
      _isRaised = true;
    }
    _raised.notify_all();
  }

  bool isRaised() const {
    const std::lock_guard lock(_mutex);
    return _isRaised;
  }

  /// Waits that long; false when the server ends before.
  bool waitFor(std::chrono::duration<double> time) const {
    std::unique_lock lock(_mutex);
    return !_raised.wait_for(lock, time, [this] { return _isRaised; });
  }

 private:
  mutable std::mutex _mutex;
  mutable std::condition_variable _raised;
  bool _isRaised = false;
};

}  // namespace kestrom::sandbox

#pragma once

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace kestrom::reactive {

/// Lets one piece of work through at a time, in the order of arrival, without holding a lock while it runs: what comes
/// while another runs, on another thread or inside it, is left to whoever is inside. Nothing is allocated where nothing
/// meets.
class SerialGate {
 public:
  template <class F>
  void run(F work) {
    {
      const std::lock_guard lock(_mutex);
      if (_isBusy) {
        _waiting.emplace_back(std::move(work));
        return;
      }
      _isBusy = true;
    }
    work();
    drain();
  }

 private:
  void drain() {
    while (true) {
      std::vector<std::move_only_function<void()>> waiting;
      {
        const std::lock_guard lock(_mutex);
        if (_waiting.empty()) {
          _isBusy = false;
          return;
        }
        waiting = std::exchange(_waiting, {});
      }
      for (auto& work : waiting) work();
    }
  }

  std::mutex _mutex;
  bool _isBusy = false;
  std::vector<std::move_only_function<void()>> _waiting;
};

}  // namespace kestrom::reactive

#include "Kestrom/Platform/AnyCancellable.hpp"

#include <algorithm>
#include <atomic>

namespace kestrom::reactive {

namespace {

class CancelFunction final : public CancelTarget {
 public:
  explicit CancelFunction(std::move_only_function<void()> function) : _function(std::move(function)) {}

  void cancel() override {
    if (!_isDone.exchange(true)) std::exchange(_function, nullptr)();
  }
  bool isDone() const override { return _isDone; }

 private:
  std::move_only_function<void()> _function;
  std::atomic<bool> _isDone = false;
};

}  // namespace

AnyCancellable::AnyCancellable(std::move_only_function<void()> cancel)
    : _target(makeRef<CancelFunction>(std::move(cancel))) {}

Cancellables::~Cancellables() {
  while (!_held.empty()) cancelAll();
}

void Cancellables::store(AnyCancellable cancellable) {
  if (_held.size() >= _pruneAt) {
    std::erase_if(_held, [](const AnyCancellable& held) { return held.isDone(); });
    _pruneAt = std::max<std::size_t>(16, 2 * _held.size());
  }
  _held.push_back(std::move(cancellable));
}

void Cancellables::cancelAll() {
  // Cancelling may end up here again; what is held then is new.
  const std::vector<AnyCancellable> held = std::exchange(_held, {});
}

std::size_t Cancellables::count() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(_held, [](const AnyCancellable& held) { return !held.isDone(); }));
}

}  // namespace kestrom::reactive

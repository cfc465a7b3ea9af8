#include "Kestrom/Platform/NotificationCenter.hpp"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace kestrom::foundation {

struct NotificationCenter::Observer {
  std::string name;
  std::function<void()> handler;
  /// Held while the handler runs; recursive, so that the handler may post again or end its own observation.
  std::recursive_mutex mutex;
  bool isEnded = false;
};

struct NotificationCenter::State {
  std::mutex mutex;
  std::vector<std::shared_ptr<Observer>> observers;
};

NotificationCenter::Observation::Observation(std::weak_ptr<State> state, std::shared_ptr<Observer> observer)
    : _state(std::move(state)), _observer(std::move(observer)) {}

NotificationCenter::Observation& NotificationCenter::Observation::operator=(Observation&& other) noexcept {
  if (this != &other) {
    end();
    _state = std::move(other._state);
    _observer = std::move(other._observer);
  }
  return *this;
}

void NotificationCenter::Observation::end() {
  // Taken out first: the handler may hold the last reference to whatever owns this observation.
  const auto observer = std::exchange(_observer, nullptr);
  if (!observer) return;
  {
    const std::lock_guard lock(observer->mutex);
    observer->isEnded = true;
  }
  if (const auto state = _state.lock()) {
    const std::lock_guard lock(state->mutex);
    std::erase(state->observers, observer);
  }
}

NotificationCenter::NotificationCenter() : _state(std::make_shared<State>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter::Observation NotificationCenter::addObserver(std::string_view name, std::function<void()> handler) {
  const auto observer = std::make_shared<Observer>();
  observer->name = name;
  observer->handler = std::move(handler);
  const std::lock_guard lock(_state->mutex);
  _state->observers.push_back(observer);
  return Observation(_state, observer);
}

void NotificationCenter::post(std::string_view name) {
  std::vector<std::shared_ptr<Observer>> called;
  {
    const std::lock_guard lock(_state->mutex);
    std::ranges::copy_if(_state->observers, std::back_inserter(called),
                         [&](const auto& observer) { return observer->name == name; });
  }
  for (const auto& observer : called) {
    const std::lock_guard lock(observer->mutex);
    if (!observer->isEnded) observer->handler();
  }
}

}  // namespace kestrom::foundation

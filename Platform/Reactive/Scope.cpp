#include "Platform/Reactive/Scope.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::reactive {

void Scope::cancel() {
  // Mostly the token of what has finished by itself.
  if (isCancelled()) return awaitDelivery();
  std::vector<std::pair<TeardownId, Teardown>> teardowns;
  {
    const std::lock_guard lock(_mutex);
    if (!_isCancelled.exchange(true, std::memory_order_seq_cst)) teardowns = std::exchange(_teardowns, {});
  }
  awaitDelivery();
  while (!teardowns.empty()) {
    Teardown teardown = std::move(teardowns.back().second);
    teardowns.pop_back();
    teardown();
  }
  detachFromParent();
}

void Scope::finish() {
  std::vector<std::pair<TeardownId, Teardown>> dropped;
  {
    const std::lock_guard lock(_mutex);
    _isCancelled.store(true, std::memory_order_seq_cst);
    dropped = std::exchange(_teardowns, {});
  }
  detachFromParent();
}

Scope::TeardownId Scope::add(Teardown teardown) {
  {
    const std::lock_guard lock(_mutex);
    if (!isCancelled()) {
      _teardowns.emplace_back(++_lastId, std::move(teardown));
      return _lastId;
    }
  }
  teardown();
  return 0;
}

void Scope::remove(TeardownId id) {
  Teardown dropped;
  const std::lock_guard lock(_mutex);
  const auto found =
      std::ranges::find(_teardowns.rbegin(), _teardowns.rend(), id, &std::pair<TeardownId, Teardown>::first);
  if (found == _teardowns.rend()) return;
  dropped = std::move(found->second);
  _teardowns.erase(std::next(found).base());
}

Ref<Scope> Scope::makeChild(const Ref<Scope>& parent) {
  Ref<Scope> child = makeRef<Scope>();
  const TeardownId id = parent->add([child] { child->cancel(); });
  const std::lock_guard lock(child->_mutex);
  if (child->isCancelled()) return child;
  child->_parent = parent;
  child->_hasParent.store(true, std::memory_order_release);
  child->_idInParent = id;
  return child;
}

void Scope::detachFromParent() {
  if (!_hasParent.load(std::memory_order_acquire)) return;
  Ref<Scope> parent;
  {
    const std::lock_guard lock(_mutex);
    parent = std::exchange(_parent, nullptr);
  }
  if (parent) parent->remove(_idInParent);
}

void Scope::awaitDelivery() const {
  if (_deliveriesOfThisThread > 0) return;
  while (_deliverer.load(std::memory_order_seq_cst) != std::thread::id()) std::this_thread::yield();
}

}  // namespace kestrom::reactive

#pragma once

#include "Platform/Reactive/Publisher.hpp"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace kestrom::reactive {
namespace detail {

/// Who listens to a subject. The list is replaced whole when somebody comes or goes, so that sending needs no lock
/// while it delivers and sees one list from its start to its end.
template <class Output, class Failure>
class Listeners final : public RefCounted {
 public:
  struct Listener {
    Ref<Subscriber<Output, Failure>> downstream;
    Ref<Scope> scope;
  };
  struct List : RefCounted {
    std::vector<Listener> listeners;
  };

  /// Calls `deliver(downstream)` for each who has not been cancelled, while `mayGoOn()`.
  template <class Deliver, class MayGoOn>
  void forEach(Deliver deliver, MayGoOn mayGoOn) {
    Ref<List> list;
    {
      const std::lock_guard lock(_mutex);
      list = _list;
    }
    if (!list) return;
    for (const Listener& listener : list->listeners) {
      if (!mayGoOn()) return;
      if (!listener.scope->isCancelled()) deliver(*listener.downstream);
    }
  }

  void add(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
    replace([&](std::vector<Listener>& listeners) { listeners.push_back({std::move(downstream), scope}); });
    scope->add([self = Ref<Listeners>(this), who = scope.get()] { self->remove(who); });
  }

  void clear() {
    replace([](std::vector<Listener>& listeners) { listeners.clear(); });
  }

 private:
  void remove(const Scope* scope) {
    replace([scope](std::vector<Listener>& listeners) {
      std::erase_if(listeners, [scope](const Listener& listener) { return listener.scope.get() == scope; });
    });
  }

  template <class Change>
  void replace(Change change) {
    Ref<List> old;
    Ref<List> changed = makeRef<List>();
    const std::lock_guard lock(_mutex);
    if (_list) changed->listeners = _list->listeners;
    change(changed->listeners);
    old = std::exchange(_list, std::move(changed));
  }

  std::mutex _mutex;
  Ref<List> _list;
};

}  // namespace detail

/// Passes on what is sent to whoever is subscribed at that moment, inside `send`. A subscriber that sends from within a
/// delivery is served at once, before the others get the outer value. Any thread; sends are to come one after the
/// other.
template <class Output, class Failure = Never>
class PassthroughSubject {
 public:
  PassthroughSubject() : _state(makeRef<State>()) {}
  PassthroughSubject(const PassthroughSubject&) = delete;
  PassthroughSubject& operator=(const PassthroughSubject&) = delete;

  void send(Output value) {
    if (_state->isFinished()) return;
    _state->listeners->forEach([&](auto& downstream) { downstream.receive(Output(value)); }, [] { return true; });
  }

  /// Ends the stream: later subscribers get the end at once, later sends are dropped.
  void finish(Completion<Failure> completion = Completion<Failure>::finished()) {
    // Held here, since a subscriber may end the subject.
    const Ref<State> state = _state;
    if (!state->finish(completion)) return;
    state->listeners->forEach([&](auto& downstream) { downstream.finish(Completion<Failure>(completion)); },
                              [] { return true; });
    state->listeners->clear();
  }

  Publisher<Output, Failure> publisher() const {
    return detail::makePublisher<Output, Failure>(
        [state = _state](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
          if (auto completion = state->completion()) return downstream->finish(std::move(*completion));
          state->listeners->add(std::move(downstream), scope);
        });
  }

 private:
  class State final : public RefCounted {
   public:
    std::optional<Completion<Failure>> completion() const {
      const std::lock_guard lock(_mutex);
      return _completion;
    }
    bool isFinished() const { return _isFinished.load(std::memory_order_acquire); }
    bool finish(const Completion<Failure>& completion) {
      const std::lock_guard lock(_mutex);
      if (_completion) return false;
      _completion = completion;
      _isFinished.store(true, std::memory_order_release);
      return true;
    }

    const Ref<detail::Listeners<Output, Failure>> listeners = makeRef<detail::Listeners<Output, Failure>>();

   private:
    mutable std::mutex _mutex;
    std::optional<Completion<Failure>> _completion;
    std::atomic<bool> _isFinished = false;
  };

  Ref<State> _state;
};

/// A field that tells its value: to a new subscriber at once, inside `sink`, then at each `set`. The field holds the
/// new value already when it is told. A subscriber that sets the field from within a delivery ends that round: the
/// others get the newer value alone. Belongs to one thread; its streams end with it without a word.
template <class Value>
class Published {
 public:
  explicit Published(Value initial) : _state(makeRef<State>(std::move(initial))) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const Value& get() const { return _state->value; }

  void set(Value value) {
    // Held here, since a subscriber may end the field.
    const Ref<State> state = _state;
    state->value = std::move(value);
    const auto round = ++state->round;
    state->listeners->forEach([&](auto& downstream) { downstream.receive(Value(state->value)); },
                              [&] { return state->round == round; });
  }

  Publisher<Value, Never> publisher() const {
    return detail::makePublisher<Value, Never>(
        [state = _state](Ref<Subscriber<Value, Never>> downstream, const Ref<Scope>& scope) {
          state->listeners->add(downstream, scope);
          downstream->receive(Value(state->value));
        });
  }

 private:
  struct State final : RefCounted {
    explicit State(Value initial) : value(std::move(initial)) {}

    Value value;
    std::uint64_t round = 0;
    const Ref<detail::Listeners<Value, Never>> listeners = makeRef<detail::Listeners<Value, Never>>();
  };

  Ref<State> _state;
};

}  // namespace kestrom::reactive

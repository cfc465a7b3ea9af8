#pragma once

#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Timers.hpp"

#include <atomic>
#include <mutex>
#include <vector>

/// Where values come from, beside subjects and published fields.
namespace kestrom::reactive {

/// The values of a list, then the end; inside `sink`.
template <class Failure = Never, class Output>
Publisher<Output, Failure> listed(std::vector<Output> values) {
  return detail::makePublisher<Output, Failure>(
      [values = std::move(values)](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        for (const Output& value : values) {
          if (scope->isCancelled()) return;
          downstream->receive(Output(value));
        }
        if (!scope->isCancelled()) downstream->finish(Completion<Failure>::finished());
      });
}

/// One value, then the end; inside `sink`.
template <class Failure = Never, class Output>
Publisher<Output, Failure> just(Output value) {
  return detail::makePublisher<Output, Failure>(
      [value = std::move(value)](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        if (!scope->isCancelled()) downstream->receive(Output(value));
        if (!scope->isCancelled()) downstream->finish(Completion<Failure>::finished());
      });
}

/// One value, then the end, inside `sink`, for the one who subscribes first: he gets it without a copy, everybody else
/// the end alone. For what a stage hands to the next one.
template <class Failure = Never, class Output>
Publisher<Output, Failure> handedOver(Output value) {
  class HandOver final : public Stage<Output, Failure> {
   public:
    explicit HandOver(Output&& value) : _value(std::move(value)) {}

    void subscribe(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) const override {
      if (!scope->isCancelled() && !_isGone.test_and_set()) downstream->receive(std::move(_value));
      if (!scope->isCancelled()) downstream->finish(Completion<Failure>::finished());
    }

   private:
    mutable Output _value;
    mutable std::atomic_flag _isGone;
  };
  return Publisher<Output, Failure>(makeRef<HandOver>(std::move(value)));
}

/// The failure, inside `sink`.
template <class Output, class Failure>
Publisher<Output, Failure> fail(Failure failure) {
  return detail::makePublisher<Output, Failure>(
      [failure = std::move(failure)](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        if (!scope->isCancelled()) downstream->finish(Completion<Failure>::failed(failure));
      });
}

/// The end without a value, inside `sink`.
template <class Output, class Failure = Never>
Publisher<Output, Failure> empty() {
  return detail::makePublisher<Output, Failure>(
      [](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        if (!scope->isCancelled()) downstream->finish(Completion<Failure>::finished());
      });
}

/// A result that is there already, inside `sink`.
template <class Output, class Failure>
Publisher<Output, Failure> finished(std::expected<Output, Failure> result) {
  if (result) return just<Failure>(std::move(*result));
  return fail<Output>(std::move(result.error()));
}

/// Asks `make` for a publisher at each subscription.
template <class Make>
auto deferred(Make make) {
  using Made = detail::PublisherTraits<std::remove_cvref_t<std::invoke_result_t<const Make&>>>;
  return detail::makePublisher<typename Made::Output, typename Made::Failure>(
      [make = std::move(make)](Ref<Subscriber<typename Made::Output, typename Made::Failure>> downstream,
                               const Ref<Scope>& scope) { make().subscribe(std::move(downstream), scope); });
}

/// One tick every `interval`, the first after one, on `scheduler`; never ends. A tick is the moment at which it was
/// due.
inline Publisher<TimePoint, Never> timer(Duration interval, Scheduler& scheduler) {
  return detail::makePublisher<TimePoint, Never>(
      [interval, &scheduler](Ref<Subscriber<TimePoint, Never>> downstream, const Ref<Scope>& scope) {
        Timers::make(scope)->startRepeating(scheduler, interval, [downstream, scope](TimePoint due) {
          if (!scope->isCancelled()) downstream->receive(TimePoint(due));
        });
      });
}

namespace detail {

/// The result of a future and who waits for it.
template <class Output, class Failure>
class FutureState final : public RefCounted {
 public:
  using Result = std::expected<Output, Failure>;
  using Waiting = Ref<Subscriber<Output, Failure>>;

  void resolve(Result result) {
    std::vector<std::pair<Waiting, Ref<Scope>>> waiting;
    {
      const std::lock_guard lock(_mutex);
      if (_result) return;
      _result = std::move(result);
      waiting = std::exchange(_waiting, {});
    }
    for (auto& [downstream, scope] : waiting) deliver(*downstream, *scope);
  }

  void subscribe(Waiting downstream, const Ref<Scope>& scope) {
    {
      const std::lock_guard lock(_mutex);
      if (!_result) {
        _waiting.emplace_back(std::move(downstream), scope);
        scope->add([self = Ref<FutureState>(this), who = scope.get()] { self->forget(who); });
        return;
      }
    }
    deliver(*downstream, *scope);
  }

 private:
  void deliver(Subscriber<Output, Failure>& downstream, Scope& scope) const {
    if (scope.isCancelled()) return;
    if (!*_result) {
      if constexpr (!std::same_as<Failure, Never>) downstream.finish(Completion<Failure>::failed(_result->error()));
      return;
    }
    downstream.receive(Output(**_result));
    if (!scope.isCancelled()) downstream.finish(Completion<Failure>::finished());
  }

  void forget(const Scope* scope) {
    std::vector<std::pair<Waiting, Ref<Scope>>> dropped;
    const std::lock_guard lock(_mutex);
    for (auto& entry : std::exchange(_waiting, {})) {
      (entry.second.get() == scope ? dropped : _waiting).push_back(std::move(entry));
    }
  }

  std::mutex _mutex;
  std::optional<Result> _result;
  std::vector<std::pair<Waiting, Ref<Scope>>> _waiting;
};

}  // namespace detail

/// Gives a future its result: the first call counts. Copyable; any thread.
template <class Output, class Failure>
class Promise {
 public:
  explicit Promise(Ref<detail::FutureState<Output, Failure>> state) : _state(std::move(state)) {}

  void operator()(std::expected<Output, Failure> result) const { _state->resolve(std::move(result)); }

 private:
  Ref<detail::FutureState<Output, Failure>> _state;
};

/// Starts `work(promise)` now, once, and gives its one result to every subscriber: to later ones inside `sink`, to
/// those that wait on the thread that resolves it. `deferred` around it starts the work anew for each.
template <class Output, class Failure, class StartWork>
Publisher<Output, Failure> future(StartWork work) {
  auto state = makeRef<detail::FutureState<Output, Failure>>();
  work(Promise<Output, Failure>(state));
  return detail::makePublisher<Output, Failure>(
      [state](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        state->subscribe(std::move(downstream), scope);
      });
}

}  // namespace kestrom::reactive

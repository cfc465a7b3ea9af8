#pragma once

#include "Kestrom/Platform/AnyCancellable.hpp"
#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Reactive/Subscriber.hpp"

#include <concepts>
#include <expected>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace kestrom::reactive {

/// What a publisher does for each subscription: makes `downstream` receive, as long as `scope` lasts. Immutable, so
/// that one publisher may be subscribed to from several threads. Whatever holds `downstream` beyond the call leaves in
/// the scope what lets it go.
template <class Output, class Failure>
class Stage : public RefCounted {
 public:
  virtual void subscribe(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) const = 0;
};

template <class Output, class Failure>
class Publisher;

namespace detail {

template <class T>
struct PublisherTraits;
template <class O, class F>
struct PublisherTraits<Publisher<O, F>> {
  using Output = O;
  using Failure = F;
};

template <class T>
struct ExpectedTraits;
template <class V, class E>
struct ExpectedTraits<std::expected<V, E>> {
  using Value = V;
  using Error = E;
};

/// The failure of a chain whose two parts fail with `A` and `B`: they are the same, or one cannot fail.
template <class A, class B>
using JoinedFailure = std::conditional_t<std::same_as<A, Never>, B, A>;

template <class To, class From>
Completion<To> convertCompletion(Completion<From>&& completion) {
  if constexpr (std::same_as<To, From>) {
    return std::move(completion);
  } else {
    static_assert(std::same_as<From, Never>, "only a stage that cannot fail may stand for one with another failure");
    return Completion<To>::finished();
  }
}

}  // namespace detail

/// The handlers of `handleEvents`; each may be empty.
template <class Output, class Failure>
struct EventHandlers {
  std::function<void()> onSubscribe = nullptr;
  std::function<void(const Output&)> onOutput = nullptr;
  std::function<void(const Completion<Failure>&)> onCompletion = nullptr;
  std::function<void()> onCancel = nullptr;
};

/// A stream of values that may end with a failure: a copyable value that does nothing until `sink`. Each subscription
/// runs the work again, unless the source is a subject or a published field. There is no demand: values come as they
/// are made. Where nothing else is said values are delivered on the thread and at the moment at which they come from
/// the source; sources that have their values at once (`just`, finished results, published fields) deliver inside
/// `sink`. `Failure` `Never` makes a failing completion impossible to write.
template <class OutputType, class FailureType>
class Publisher {
 public:
  using Output = OutputType;
  using Failure = FailureType;
  using Downstream = Ref<Subscriber<Output, Failure>>;

  explicit Publisher(Ref<const Stage<Output, Failure>> stage) : _stage(std::move(stage)) {}

  /// Subscribes: `onValue` for each value, then `onCompletion` at most once. Dropping the token ends the subscription.
  template <class OnCompletion, class OnValue>
    requires std::invocable<OnCompletion&, Completion<Failure>&&> && std::invocable<OnValue&, Output&&>
  AnyCancellable sink(OnCompletion onCompletion, OnValue onValue) const;

  /// The same for what cannot fail, and whose end does not matter.
  template <class OnValue>
    requires std::same_as<Failure, Never> && std::invocable<OnValue&, Output&&>
  AnyCancellable sink(OnValue onValue) const {
    return sink([](Completion<Failure>&&) {}, std::move(onValue));
  }

  /// For stages: subscribes within the life of another subscription.
  void subscribe(Downstream downstream, const Ref<Scope>& scope) const {
    _stage->subscribe(std::move(downstream), scope);
  }

  // Each value changed, dropped or followed by a publisher of its own.

  template <class F>
  auto map(F function) const;
  /// Drops the values for which the function gives none.
  template <class F>
  auto compactMap(F function) const;
  template <class F>
  auto filter(F predicate) const;
  /// The function gives std::expected; its error ends the stream and cancels what is above.
  template <class F>
  auto tryMap(F function) const;
  /// The same, for a function that reads a record from bytes.
  template <class F>
  auto decode(F decoder) const {
    return tryMap(std::move(decoder));
  }
  /// Subscribes to the publisher that the function gives for each value, to all of them at once.
  template <class F>
  auto flatMap(F function) const;
  /// Passes on what `function(accumulated, value)` gives, and accumulates it.
  template <class Accumulated, class F>
  auto scan(Accumulated initial, F function) const;
  /// The first value, then the end; cancels what is above.
  Publisher first() const;

  // Failures.

  template <class F>
  auto mapError(F function) const;
  /// Goes on with the publisher that the function gives for the failure.
  template <class F>
  auto catchError(F function) const;
  Publisher<Output, Never> replaceError(Output value) const;
  /// Subscribes anew after a failure, `times` times at the most; the last failure goes on.
  Publisher retry(int times) const;
  /// Says that what cannot fail stands where something that can is wanted.
  template <class NewFailure>
    requires std::same_as<Failure, Never>
  Publisher<Output, NewFailure> setFailureType() const;

  // Time and threads.

  /// Delivers everything on `scheduler`, in order.
  Publisher receiveOn(Scheduler& scheduler) const;
  /// Delivers everything, the end too, `duration` later on `scheduler`.
  Publisher delay(Duration duration, Scheduler& scheduler) const;
  /// Ends when no value and no end comes for `duration`: with `failure` if there is one, else as finished.
  Publisher timeout(Duration duration, Scheduler& scheduler, std::optional<Failure> failure = std::nullopt) const;
  /// The first value at once, then at most one in each `interval`: of those that came in it the latest or the first.
  Publisher throttle(Duration interval, Scheduler& scheduler, bool latest) const;
  /// Lists of the values of each `interval`, counted from the subscription on; an interval without values gives none.
  /// The end brings what is held, a failure drops it.
  Publisher<std::vector<Output>, Failure> collect(Duration interval, Scheduler& scheduler) const;

  // Other things.

  Publisher handleEvents(EventHandlers<Output, Failure> handlers) const;
  /// Subscribes to `next` when this one has finished.
  Publisher append(Publisher next) const;

 private:
  Ref<const Stage<Output, Failure>> _stage;
};

namespace detail {

/// A stage that puts a subscriber of its own in front of the downstream's; `make(downstream, scope)` makes it.
template <class Input, class InputFailure, class Output, class Failure, class Make>
class LiftedStage final : public Stage<Output, Failure> {
 public:
  LiftedStage(Publisher<Input, InputFailure> upstream, Make make)
      : _upstream(std::move(upstream)), _make(std::move(make)) {}

  void subscribe(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) const override {
    _upstream.subscribe(_make(std::move(downstream), scope), scope);
  }

 private:
  Publisher<Input, InputFailure> _upstream;
  Make _make;
};

template <class Output, class Failure, class Input, class InputFailure, class Make>
Publisher<Output, Failure> lift(const Publisher<Input, InputFailure>& upstream, Make make) {
  using Lifted = LiftedStage<Input, InputFailure, Output, Failure, Make>;
  return Publisher<Output, Failure>(makeRef<const Lifted>(upstream, std::move(make)));
}

/// A stage from a function of downstream and scope.
template <class Output, class Failure, class Subscribe>
class FunctionStage final : public Stage<Output, Failure> {
 public:
  explicit FunctionStage(Subscribe subscribe) : _subscribe(std::move(subscribe)) {}

  void subscribe(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) const override {
    _subscribe(std::move(downstream), scope);
  }

 private:
  Subscribe _subscribe;
};

template <class Output, class Failure, class Subscribe>
Publisher<Output, Failure> makePublisher(Subscribe subscribe) {
  using Made = FunctionStage<Output, Failure, Subscribe>;
  return Publisher<Output, Failure>(makeRef<const Made>(std::move(subscribe)));
}

/// A subscriber in front of another one; what it does not override goes through.
template <class Input, class InputFailure, class Output, class Failure>
class Operator : public Subscriber<Input, InputFailure> {
 public:
  explicit Operator(Ref<Subscriber<Output, Failure>> downstream) : _downstream(std::move(downstream)) {}

  void finish(Completion<InputFailure>&& completion) override {
    _downstream->finish(convertCompletion<Failure>(std::move(completion)));
  }

 protected:
  Ref<Subscriber<Output, Failure>> _downstream;
};

/// The end of a chain.
template <class Output, class Failure, class OnCompletion, class OnValue>
class Sink final : public Subscriber<Output, Failure> {
 public:
  Sink(Ref<Scope> scope, OnCompletion onCompletion, OnValue onValue)
      : _scope(std::move(scope)), _onCompletion(std::move(onCompletion)), _onValue(std::move(onValue)) {}

  void receive(Passed<Output> value) override {
    _scope->whileNotCancelled([&] { _onValue(std::move(value)); });
  }

  void finish(Completion<Failure>&& completion) override {
    _scope->whileNotCancelled([&] {
      _scope->finish();
      _onCompletion(std::move(completion));
    });
  }

 private:
  Ref<Scope> _scope;
  OnCompletion _onCompletion;
  OnValue _onValue;
};

}  // namespace detail

template <class O, class F>
template <class OnCompletion, class OnValue>
  requires std::invocable<OnCompletion&, Completion<F>&&> && std::invocable<OnValue&, O&&>
AnyCancellable Publisher<O, F>::sink(OnCompletion onCompletion, OnValue onValue) const {
  Ref<Scope> scope = makeRef<Scope>();
  subscribe(makeRef<detail::Sink<O, F, OnCompletion, OnValue>>(scope, std::move(onCompletion), std::move(onValue)),
            scope);
  return AnyCancellable(std::move(scope));
}

}  // namespace kestrom::reactive

#pragma once

// The operators of `Publisher` on values; included by Publisher.hpp alone.

#include "Platform/Reactive/PublisherCore.hpp"
#include "Platform/Reactive/SerialGate.hpp"

#include <memory>
#include <mutex>

namespace kestrom::reactive {
namespace detail {

template <class Input, class Output, class Failure, class F>
class MapOperator final : public Operator<Input, Failure, Output, Failure> {
 public:
  MapOperator(Ref<Subscriber<Output, Failure>> downstream, F function)
      : Operator<Input, Failure, Output, Failure>(std::move(downstream)), _function(std::move(function)) {}

  void receive(Passed<Input> value) override { this->_downstream->receive(_function(std::move(value))); }

 private:
  F _function;
};

template <class Input, class Output, class Failure, class F>
class CompactMapOperator final : public Operator<Input, Failure, Output, Failure> {
 public:
  CompactMapOperator(Ref<Subscriber<Output, Failure>> downstream, F function)
      : Operator<Input, Failure, Output, Failure>(std::move(downstream)), _function(std::move(function)) {}

  void receive(Passed<Input> value) override {
    if (std::optional<Output> output = _function(std::move(value))) this->_downstream->receive(std::move(*output));
  }

 private:
  F _function;
};

template <class Output, class Failure, class F>
class FilterOperator final : public Operator<Output, Failure, Output, Failure> {
 public:
  FilterOperator(Ref<Subscriber<Output, Failure>> downstream, F predicate)
      : Operator<Output, Failure, Output, Failure>(std::move(downstream)), _predicate(std::move(predicate)) {}

  void receive(Passed<Output> value) override {
    if (_predicate(std::as_const(value))) this->_downstream->receive(std::move(value));
  }

 private:
  F _predicate;
};

template <class Input, class Output, class Failure, class F>
class ScanOperator final : public Operator<Input, Failure, Output, Failure> {
 public:
  ScanOperator(Ref<Subscriber<Output, Failure>> downstream, Output initial, F function)
      : Operator<Input, Failure, Output, Failure>(std::move(downstream)),
        _accumulated(std::move(initial)),
        _function(std::move(function)) {}

  void receive(Passed<Input> value) override {
    _accumulated = _function(std::move(_accumulated), std::move(value));
    this->_downstream->receive(Output(_accumulated));
  }

 private:
  Output _accumulated;
  F _function;
};

/// An operator that ends its upstream before the rest of the chain: it subscribes within a scope of its own.
template <class Input, class InputFailure, class Output, class Failure>
class EndingOperator : public Operator<Input, InputFailure, Output, Failure> {
 public:
  EndingOperator(Ref<Subscriber<Output, Failure>> downstream, Ref<Scope> upstreamScope)
      : Operator<Input, InputFailure, Output, Failure>(std::move(downstream)),
        _upstreamScope(std::move(upstreamScope)) {}

  void finish(Completion<InputFailure>&& completion) override {
    if (_upstreamScope->isCancelled()) return;
    _upstreamScope->finish();
    this->_downstream->finish(convertCompletion<Failure>(std::move(completion)));
  }

 protected:
  void end(Completion<Failure>&& completion) {
    _upstreamScope->cancel();
    this->_downstream->finish(std::move(completion));
  }
  bool hasEnded() const { return _upstreamScope->isCancelled(); }

 private:
  Ref<Scope> _upstreamScope;
};

/// Like `lift`, for operators that end their upstream: `make(downstream, upstreamScope)`.
template <class Output, class Failure, class Input, class InputFailure, class Make>
Publisher<Output, Failure> liftEnding(const Publisher<Input, InputFailure>& upstream, Make make) {
  return makePublisher<Output, Failure>(
      [upstream, make = std::move(make)](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        const Ref<Scope> upstreamScope = Scope::makeChild(scope);
        upstream.subscribe(make(std::move(downstream), upstreamScope), upstreamScope);
      });
}

template <class Input, class InputFailure, class Output, class Failure, class F>
class TryMapOperator final : public EndingOperator<Input, InputFailure, Output, Failure> {
 public:
  TryMapOperator(Ref<Subscriber<Output, Failure>> downstream, Ref<Scope> upstreamScope, F function)
      : EndingOperator<Input, InputFailure, Output, Failure>(std::move(downstream), std::move(upstreamScope)),
        _function(std::move(function)) {}

  void receive(Passed<Input> value) override {
    if (this->hasEnded()) return;
    auto output = _function(std::move(value));
    if (output) {
      this->_downstream->receive(std::move(*output));
    } else {
      this->end(Completion<Failure>::failed(std::move(output.error())));
    }
  }

 private:
  F _function;
};

template <class Output, class Failure>
class FirstOperator final : public EndingOperator<Output, Failure, Output, Failure> {
 public:
  using EndingOperator<Output, Failure, Output, Failure>::EndingOperator;

  void receive(Passed<Output> value) override {
    if (_hasValue || this->hasEnded()) return;
    _hasValue = true;
    this->_downstream->receive(std::move(value));
    this->end(Completion<Failure>::finished());
  }
  void finish(Completion<Failure>&& completion) override {
    if (!_hasValue) EndingOperator<Output, Failure, Output, Failure>::finish(std::move(completion));
  }

 private:
  bool _hasValue = false;
};

/// What the streams that come together in one share: who still runs, and the order of what goes out.
template <class Output, class Failure>
class Joint : public RefCounted {
 public:
  Joint(Ref<Subscriber<Output, Failure>> downstream, Ref<Scope> scope, std::size_t running)
      : _downstream(std::move(downstream)), _scope(std::move(scope)), _running(running) {}

  void begin() {
    _gate.run([this] { ++_running; });
  }

  void receive(Output&& value) {
    const Ref<Joint> self(this);
    _gate.run([this, self, value = std::move(value)]() mutable {
      if (!_scope->isCancelled()) _downstream->receive(std::move(value));
    });
  }

  /// The first failure ends all; the last end without one ends the whole.
  template <class PartFailure>
  void finish(Completion<PartFailure>&& completion) {
    const Ref<Joint> self(this);
    _gate.run([this, self, completion = convertCompletion<Failure>(std::move(completion))]() mutable {
      if (_scope->isCancelled() || (--_running > 0 && !completion.isFailure())) return;
      _scope->cancel();
      _downstream->finish(std::move(completion));
    });
  }

  const Ref<Scope>& scope() const { return _scope; }

 private:
  SerialGate _gate;
  Ref<Subscriber<Output, Failure>> _downstream;
  Ref<Scope> _scope;
  std::size_t _running;
};

/// One of the streams that come together. Its scope ends with it: what it left there must not stay as long as the
/// whole.
template <class Output, class PartFailure, class Failure>
class JointPart final : public Subscriber<Output, PartFailure> {
 public:
  JointPart(Ref<Joint<Output, Failure>> joint, Ref<Scope> scope) : _joint(std::move(joint)), _scope(std::move(scope)) {}

  static void subscribe(const Publisher<Output, PartFailure>& part, const Ref<Joint<Output, Failure>>& joint) {
    const Ref<Scope> scope = Scope::makeChild(joint->scope());
    part.subscribe(makeRef<JointPart>(joint, scope), scope);
  }

  void receive(Passed<Output> value) override { _joint->receive(std::move(value)); }
  void finish(Completion<PartFailure>&& completion) override {
    _scope->finish();
    _joint->finish(std::move(completion));
  }

 private:
  Ref<Joint<Output, Failure>> _joint;
  Ref<Scope> _scope;
};

template <class Input, class InputFailure, class Output, class Failure, class F>
class FlatMapOperator final : public Subscriber<Input, InputFailure> {
 public:
  FlatMapOperator(Ref<Joint<Output, Failure>> joint, F function)
      : _joint(std::move(joint)), _function(std::move(function)) {}

  void receive(Passed<Input> value) override {
    if (_joint->scope()->isCancelled()) return;
    const auto inner = _function(std::move(value));
    using InnerFailure = typename PublisherTraits<std::remove_cvref_t<decltype(inner)>>::Failure;
    _joint->begin();
    JointPart<Output, InnerFailure, Failure>::subscribe(inner, _joint);
  }
  void finish(Completion<InputFailure>&& completion) override { _joint->finish(std::move(completion)); }

 private:
  Ref<Joint<Output, Failure>> _joint;
  F _function;
};

}  // namespace detail

template <class O, class F>
template <class Function>
auto Publisher<O, F>::map(Function function) const {
  using Result = std::remove_cvref_t<std::invoke_result_t<Function&, O&&>>;
  return detail::lift<Result, F>(*this, [function](Ref<Subscriber<Result, F>> downstream, const Ref<Scope>&) {
    return makeRef<detail::MapOperator<O, Result, F, Function>>(std::move(downstream), function);
  });
}

template <class O, class F>
template <class Function>
auto Publisher<O, F>::compactMap(Function function) const {
  using Result = typename std::remove_cvref_t<std::invoke_result_t<Function&, O&&>>::value_type;
  return detail::lift<Result, F>(*this, [function](Ref<Subscriber<Result, F>> downstream, const Ref<Scope>&) {
    return makeRef<detail::CompactMapOperator<O, Result, F, Function>>(std::move(downstream), function);
  });
}

template <class O, class F>
template <class Predicate>
auto Publisher<O, F>::filter(Predicate predicate) const {
  return detail::lift<O, F>(*this, [predicate](Ref<Subscriber<O, F>> downstream, const Ref<Scope>&) {
    return makeRef<detail::FilterOperator<O, F, Predicate>>(std::move(downstream), predicate);
  });
}

template <class O, class F>
template <class Accumulated, class Function>
auto Publisher<O, F>::scan(Accumulated initial, Function function) const {
  return detail::lift<Accumulated, F>(
      *this, [initial = std::move(initial), function](Ref<Subscriber<Accumulated, F>> downstream, const Ref<Scope>&) {
        return makeRef<detail::ScanOperator<O, Accumulated, F, Function>>(std::move(downstream), initial, function);
      });
}

template <class O, class F>
template <class Function>
auto Publisher<O, F>::tryMap(Function function) const {
  using Result = detail::ExpectedTraits<std::remove_cvref_t<std::invoke_result_t<Function&, O&&>>>;
  using Value = typename Result::Value;
  using Failed = detail::JoinedFailure<F, typename Result::Error>;
  static_assert(std::same_as<Failed, typename Result::Error>, "the function fails like the publisher");
  return detail::liftEnding<Value, Failed>(
      *this, [function](Ref<Subscriber<Value, Failed>> downstream, const Ref<Scope>& upstreamScope) {
        return makeRef<detail::TryMapOperator<O, F, Value, Failed, Function>>(std::move(downstream), upstreamScope,
                                                                              function);
      });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::first() const {
  return detail::liftEnding<O, F>(*this, [](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& upstreamScope) {
    return makeRef<detail::FirstOperator<O, F>>(std::move(downstream), upstreamScope);
  });
}

template <class O, class F>
template <class Function>
auto Publisher<O, F>::flatMap(Function function) const {
  using Inner = detail::PublisherTraits<std::remove_cvref_t<std::invoke_result_t<Function&, O&&>>>;
  using Result = typename Inner::Output;
  using Failed = detail::JoinedFailure<F, typename Inner::Failure>;
  return detail::liftEnding<Result, Failed>(
      *this, [function](Ref<Subscriber<Result, Failed>> downstream, const Ref<Scope>& innerScope) {
        auto joint = makeRef<detail::Joint<Result, Failed>>(std::move(downstream), innerScope, 1);
        return makeRef<detail::FlatMapOperator<O, F, Result, Failed, Function>>(std::move(joint), function);
      });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::handleEvents(EventHandlers<O, F> handlers) const {
  class Handling final : public detail::Operator<O, F, O, F> {
   public:
    Handling(Ref<Subscriber<O, F>> downstream, EventHandlers<O, F> events, Ref<Scope> scope)
        : detail::Operator<O, F, O, F>(std::move(downstream)), _events(std::move(events)), _scope(std::move(scope)) {
      if (_events.onCancel) _cancelId = _scope->add(_events.onCancel);
    }

    void receive(Passed<O> value) override {
      if (_events.onOutput) _events.onOutput(value);
      this->_downstream->receive(std::move(value));
    }
    void finish(Completion<F>&& completion) override {
      // The chain may go on without this part of it.
      _scope->remove(_cancelId);
      if (_events.onCompletion) _events.onCompletion(completion);
      this->_downstream->finish(std::move(completion));
    }

   private:
    EventHandlers<O, F> _events;
    Ref<Scope> _scope;
    Scope::TeardownId _cancelId = 0;
  };
  return detail::lift<O, F>(
      *this, [handlers = std::move(handlers)](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& scope) {
        if (handlers.onSubscribe) handlers.onSubscribe();
        return makeRef<Handling>(std::move(downstream), handlers, scope);
      });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::append(Publisher next) const {
  class Appending final : public detail::Operator<O, F, O, F> {
   public:
    Appending(Ref<Subscriber<O, F>> downstream, Publisher following, Ref<Scope> scope)
        : detail::Operator<O, F, O, F>(std::move(downstream)),
          _following(std::move(following)),
          _scope(std::move(scope)) {}

    void receive(Passed<O> value) override { this->_downstream->receive(std::move(value)); }
    void finish(Completion<F>&& completion) override {
      if (completion.isFailure()) return this->_downstream->finish(std::move(completion));
      if (!_scope->isCancelled()) _following.subscribe(std::move(this->_downstream), _scope);
    }

   private:
    Publisher _following;
    Ref<Scope> _scope;
  };
  return detail::lift<O, F>(*this, [next = std::move(next)](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& scope) {
    return makeRef<Appending>(std::move(downstream), next, scope);
  });
}

}  // namespace kestrom::reactive

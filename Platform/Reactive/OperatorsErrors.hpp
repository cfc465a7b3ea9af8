#pragma once

// The operators of `Publisher` on failures; included by Publisher.hpp alone.

#include "Platform/Reactive/PublisherCore.hpp"

namespace kestrom::reactive {
namespace detail {

/// Passes values on and leaves the failure to `onFailure(failure, downstream)`.
template <class Output, class Failure, class NewFailure, class OnFailure>
class FailureOperator final : public Subscriber<Output, Failure> {
 public:
  FailureOperator(Ref<Subscriber<Output, NewFailure>> downstream, OnFailure onFailure)
      : _downstream(std::move(downstream)), _onFailure(std::move(onFailure)) {}

  void receive(Passed<Output> value) override { _downstream->receive(std::move(value)); }
  void finish(Completion<Failure>&& completion) override {
    if (completion.isFailure()) {
      _onFailure(std::move(completion).failure(), _downstream);
    } else {
      _downstream->finish(Completion<NewFailure>::finished());
    }
  }

 private:
  Ref<Subscriber<Output, NewFailure>> _downstream;
  OnFailure _onFailure;
};

template <class NewFailure, class Output, class Failure, class MakeOnFailure>
Publisher<Output, NewFailure> liftFailure(const Publisher<Output, Failure>& upstream, MakeOnFailure make) {
  return lift<Output, NewFailure>(
      upstream, [make = std::move(make)](Ref<Subscriber<Output, NewFailure>> downstream, const Ref<Scope>& scope) {
        auto onFailure = make(scope);
        return makeRef<FailureOperator<Output, Failure, NewFailure, decltype(onFailure)>>(std::move(downstream),
                                                                                          std::move(onFailure));
      });
}

/// Subscribes to `source` again while tries are left.
template <class Output, class Failure>
class RetryOperator final : public Operator<Output, Failure, Output, Failure> {
 public:
  RetryOperator(Ref<Subscriber<Output, Failure>> downstream, Publisher<Output, Failure> source, int triesLeft,
                Ref<Scope> scope)
      : Operator<Output, Failure, Output, Failure>(std::move(downstream)),
        _source(std::move(source)),
        _triesLeft(triesLeft),
        _scope(std::move(scope)) {}

  void receive(Passed<Output> value) override { this->_downstream->receive(std::move(value)); }
  void finish(Completion<Failure>&& completion) override {
    if (!completion.isFailure() || _triesLeft <= 0) return this->_downstream->finish(std::move(completion));
    if (_scope->isCancelled()) return;
    _source.subscribe(makeRef<RetryOperator>(std::move(this->_downstream), _source, _triesLeft - 1, _scope), _scope);
  }

 private:
  Publisher<Output, Failure> _source;
  int _triesLeft;
  Ref<Scope> _scope;
};

}  // namespace detail

template <class O, class F>
template <class Function>
auto Publisher<O, F>::mapError(Function function) const {
  using NewFailure = std::remove_cvref_t<std::invoke_result_t<Function&, F&&>>;
  return detail::liftFailure<NewFailure>(*this, [function](const Ref<Scope>&) {
    return [function](F&& failure, const Ref<Subscriber<O, NewFailure>>& downstream) mutable {
      downstream->finish(Completion<NewFailure>::failed(function(std::move(failure))));
    };
  });
}

template <class O, class F>
template <class Function>
auto Publisher<O, F>::catchError(Function function) const {
  using Replacement = std::remove_cvref_t<std::invoke_result_t<Function&, F&&>>;
  using NewFailure = typename detail::PublisherTraits<Replacement>::Failure;
  return detail::liftFailure<NewFailure>(*this, [function](const Ref<Scope>& scope) {
    return [function, scope](F&& failure, const Ref<Subscriber<O, NewFailure>>& downstream) mutable {
      if (!scope->isCancelled()) function(std::move(failure)).subscribe(downstream, scope);
    };
  });
}

template <class O, class F>
Publisher<O, Never> Publisher<O, F>::replaceError(O value) const {
  return detail::liftFailure<Never>(*this, [value = std::move(value)](const Ref<Scope>&) {
    return [value](F&&, const Ref<Subscriber<O, Never>>& downstream) {
      downstream->receive(O(value));
      downstream->finish(Completion<Never>::finished());
    };
  });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::retry(int times) const {
  return detail::makePublisher<O, F>(
      [source = *this, times](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& scope) {
        source.subscribe(makeRef<detail::RetryOperator<O, F>>(std::move(downstream), source, times, scope), scope);
      });
}

template <class O, class F>
template <class NewFailure>
  requires std::same_as<F, Never>
Publisher<O, NewFailure> Publisher<O, F>::setFailureType() const {
  class Renaming final : public detail::Operator<O, Never, O, NewFailure> {
   public:
    using detail::Operator<O, Never, O, NewFailure>::Operator;
    void receive(Passed<O> value) override { this->_downstream->receive(std::move(value)); }
  };
  return detail::lift<O, NewFailure>(*this, [](Ref<Subscriber<O, NewFailure>> downstream, const Ref<Scope>&) {
    return makeRef<Renaming>(std::move(downstream));
  });
}

}  // namespace kestrom::reactive

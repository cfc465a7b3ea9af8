#pragma once

#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/SerialGate.hpp"

#include <deque>
#include <utility>
#include <vector>

/// Publishers of several others. A failure of one cancels the others.
namespace kestrom::reactive {

/// The values of all, as they come; ends when all have ended.
template <class Output, class Failure>
Publisher<Output, Failure> mergeMany(std::vector<Publisher<Output, Failure>> publishers) {
  return detail::makePublisher<Output, Failure>(
      [publishers = std::move(publishers)](Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& scope) {
        if (publishers.empty()) return downstream->finish(Completion<Failure>::finished());
        auto joint =
            makeRef<detail::Joint<Output, Failure>>(std::move(downstream), Scope::makeChild(scope), publishers.size());
        for (const auto& publisher : publishers) {
          if (joint->scope()->isCancelled()) return;
          detail::JointPart<Output, Failure, Failure>::subscribe(publisher, joint);
        }
      });
}

/// One after the other: the next is subscribed to when the one before has finished.
template <class Output, class Failure>
Publisher<Output, Failure> concatenate(Publisher<Output, Failure> firstPublisher, Publisher<Output, Failure> next) {
  return firstPublisher.append(std::move(next));
}

namespace detail {

/// Two streams that give pairs. `Policy` keeps what has come of each and tells when there is a pair.
template <class A, class B, class Failure, class Policy>
class Pairing final : public RefCounted {
 public:
  Pairing(Ref<Subscriber<std::pair<A, B>, Failure>> downstream, Ref<Scope> scope)
      : _downstream(std::move(downstream)), _scope(std::move(scope)) {}

  template <int kSide, class Value>
  void receive(Value&& value) {
    pass([this, value = std::forward<Value>(value)]() mutable {
      _policy.template keep<kSide>(std::move(value));
      while (auto pair = _policy.take()) _downstream->receive(std::move(*pair));
      if (_policy.canEnd()) end(Completion<Failure>::finished());
    });
  }

  template <int kSide>
  void finish(Completion<Failure>&& completion) {
    pass([this, completion = std::move(completion)]() mutable {
      if (completion.isFailure()) return end(std::move(completion));
      _policy.template finish<kSide>();
      if (_policy.canEnd()) end(Completion<Failure>::finished());
    });
  }

  const Ref<Scope>& scope() const { return _scope; }

 private:
  template <class Work>
  void pass(Work work) {
    _gate.run([self = Ref<Pairing>(this), work = std::move(work)]() mutable {
      if (!self->_scope->isCancelled()) work();
    });
  }

  void end(Completion<Failure>&& completion) {
    if (_scope->isCancelled()) return;
    _scope->cancel();
    _downstream->finish(std::move(completion));
  }

  SerialGate _gate;
  Ref<Subscriber<std::pair<A, B>, Failure>> _downstream;
  Ref<Scope> _scope;
  Policy _policy;
};

template <int kSide, class Value, class PairingType, class Failure>
class PairingSide final : public Subscriber<Value, Failure> {
 public:
  explicit PairingSide(Ref<PairingType> pairing) : _pairing(std::move(pairing)) {}

  void receive(Passed<Value> value) override { _pairing->template receive<kSide>(std::move(value)); }
  void finish(Completion<Failure>&& completion) override { _pairing->template finish<kSide>(std::move(completion)); }

 private:
  Ref<PairingType> _pairing;
};

/// The newest of each, at each change once both have come.
template <class A, class B>
class LatestPolicy {
 public:
  template <int kSide, class Value>
  void keep(Value value) {
    if constexpr (kSide == 0) {
      _a = std::move(value);
    } else {
      _b = std::move(value);
    }
    _isNew = true;
  }
  std::optional<std::pair<A, B>> take() {
    if (!std::exchange(_isNew, false) || !_a || !_b) return std::nullopt;
    return std::pair<A, B>(*_a, *_b);
  }
  template <int kSide>
  void finish() {
    _hasEnded[kSide] = true;
  }
  /// Also when one ended without a value: no pair can come any more.
  bool canEnd() const { return (_hasEnded[0] && (_hasEnded[1] || !_a)) || (_hasEnded[1] && !_b); }

 private:
  std::optional<A> _a;
  std::optional<B> _b;
  bool _isNew = false;
  bool _hasEnded[2] = {false, false};
};

/// The first of one with the first of the other, and so on.
template <class A, class B>
class ZipPolicy {
 public:
  template <int kSide, class Value>
  void keep(Value value) {
    if constexpr (kSide == 0) {
      _a.push_back(std::move(value));
    } else {
      _b.push_back(std::move(value));
    }
  }
  std::optional<std::pair<A, B>> take() {
    if (_a.empty() || _b.empty()) return std::nullopt;
    std::pair<A, B> pair(std::move(_a.front()), std::move(_b.front()));
    _a.pop_front();
    _b.pop_front();
    return pair;
  }
  template <int kSide>
  void finish() {
    _hasEnded[kSide] = true;
  }
  /// When one has ended and what it gave is used up.
  bool canEnd() const { return (_hasEnded[0] && _a.empty()) || (_hasEnded[1] && _b.empty()); }

 private:
  std::deque<A> _a;
  std::deque<B> _b;
  bool _hasEnded[2] = {false, false};
};

template <class Policy, class A, class B, class Failure>
Publisher<std::pair<A, B>, Failure> pair(Publisher<A, Failure> a, Publisher<B, Failure> b) {
  return makePublisher<std::pair<A, B>, Failure>(
      [a = std::move(a), b = std::move(b)](Ref<Subscriber<std::pair<A, B>, Failure>> downstream,
                                           const Ref<Scope>& scope) {
        using Pairs = Pairing<A, B, Failure, Policy>;
        auto pairing = makeRef<Pairs>(std::move(downstream), Scope::makeChild(scope));
        a.subscribe(makeRef<PairingSide<0, A, Pairs, Failure>>(pairing), pairing->scope());
        if (pairing->scope()->isCancelled()) return;
        b.subscribe(makeRef<PairingSide<1, B, Pairs, Failure>>(pairing), pairing->scope());
      });
}

}  // namespace detail

/// Pairs of the newest values of both, at each change once both have given one; ends when both have ended.
template <class A, class B, class Failure>
Publisher<std::pair<A, B>, Failure> combineLatest(Publisher<A, Failure> a, Publisher<B, Failure> b) {
  return detail::pair<detail::LatestPolicy<A, B>>(std::move(a), std::move(b));
}

/// Pairs of the n-th values of both; ends when one has ended and no pair can come any more.
template <class A, class B, class Failure>
Publisher<std::pair<A, B>, Failure> zip(Publisher<A, Failure> a, Publisher<B, Failure> b) {
  return detail::pair<detail::ZipPolicy<A, B>>(std::move(a), std::move(b));
}

}  // namespace kestrom::reactive

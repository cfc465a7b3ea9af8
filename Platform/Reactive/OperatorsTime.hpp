#pragma once

// The operators of `Publisher` on time and threads; included by Publisher.hpp alone.

#include "Platform/Reactive/OperatorsValues.hpp"
#include "Platform/Reactive/PublisherCore.hpp"
#include "Platform/Reactive/SerialGate.hpp"
#include "Platform/Reactive/Timers.hpp"

#include <vector>

namespace kestrom::reactive {
namespace detail {

/// Passes everything on later, by `enqueue(work)`.
template <class Output, class Failure, class Enqueue>
class LaterOperator final : public Operator<Output, Failure, Output, Failure> {
 public:
  LaterOperator(Ref<Subscriber<Output, Failure>> downstream, Ref<Scope> scope, Enqueue enqueue)
      : Operator<Output, Failure, Output, Failure>(std::move(downstream)),
        _scope(std::move(scope)),
        _enqueue(std::move(enqueue)) {}

  void receive(Passed<Output> value) override {
    _enqueue([downstream = this->_downstream, scope = _scope, value = std::move(value)]() mutable {
      if (!scope->isCancelled()) downstream->receive(std::move(value));
    });
  }
  void finish(Completion<Failure>&& completion) override {
    _enqueue([downstream = this->_downstream, scope = _scope, completion = std::move(completion)]() mutable {
      if (!scope->isCancelled()) downstream->finish(std::move(completion));
    });
  }

 private:
  Ref<Scope> _scope;
  Enqueue _enqueue;
};

/// An operator whose timers and values may meet from several threads: everything that goes out passes a gate.
template <class Input, class Output, class Failure>
class TimedOperator : public EndingOperator<Input, Failure, Output, Failure> {
 public:
  TimedOperator(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& upstreamScope, Scheduler& scheduler)
      : EndingOperator<Input, Failure, Output, Failure>(std::move(downstream), upstreamScope),
        _timers(Timers::make(upstreamScope)),
        _scheduler(scheduler) {}

  void finish(Completion<Failure>&& completion) override {
    passGate([this, completion = std::move(completion)]() mutable {
      _timers->cancelAll();
      beforeEnd(completion);
      EndingOperator<Input, Failure, Output, Failure>::finish(std::move(completion));
    });
  }

 protected:
  /// What is still to go out when the stream ends.
  virtual void beforeEnd(const Completion<Failure>&) {}

  template <class Work>
  void passGate(Work work) {
    _gate.run([self = Ref<TimedOperator>(this), work = std::move(work)]() mutable {
      if (!self->hasEnded()) work();
    });
  }

  Timers& timers() { return *_timers; }
  Scheduler& scheduler() { return _scheduler; }

 private:
  SerialGate _gate;
  Ref<Timers> _timers;
  Scheduler& _scheduler;
};

template <class Output, class Failure>
class TimeoutOperator final : public TimedOperator<Output, Output, Failure> {
 public:
  TimeoutOperator(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& upstreamScope, Scheduler& scheduler,
                  Duration duration, std::optional<Failure> failure)
      : TimedOperator<Output, Output, Failure>(std::move(downstream), upstreamScope, scheduler),
        _duration(duration),
        _failure(std::move(failure)) {}

  void begin() {
    this->timers().cancelAll();
    this->timers().start(this->scheduler(), _duration, [self = Ref<TimeoutOperator>(this)] { self->expire(); });
  }

  void receive(Passed<Output> value) override {
    this->passGate([this, value = std::move(value)]() mutable {
      begin();
      this->_downstream->receive(std::move(value));
    });
  }

 private:
  void expire() {
    this->passGate([this] {
      auto completion = Completion<Failure>::finished();
      if constexpr (!std::same_as<Failure, Never>) {
        if (_failure) completion = Completion<Failure>::failed(*_failure);
      }
      this->end(std::move(completion));
    });
  }

  Duration _duration;
  std::optional<Failure> _failure;
};

template <class Output, class Failure>
class ThrottleOperator final : public TimedOperator<Output, Output, Failure> {
 public:
  ThrottleOperator(Ref<Subscriber<Output, Failure>> downstream, const Ref<Scope>& upstreamScope, Scheduler& scheduler,
                   Duration interval, bool latest)
      : TimedOperator<Output, Output, Failure>(std::move(downstream), upstreamScope, scheduler),
        _interval(interval),
        _latest(latest) {}

  void receive(Passed<Output> value) override {
    this->passGate([this, value = std::move(value)]() mutable {
      if (_isWaiting) {
        if (_latest || !_held) _held = std::move(value);
        return;
      }
      pass(std::move(value));
    });
  }

 protected:
  void beforeEnd(const Completion<Failure>& completion) override {
    if (_held && !completion.isFailure()) this->_downstream->receive(std::move(*_held));
  }

 private:
  void pass(Output&& value) {
    _isWaiting = true;
    this->timers().start(this->scheduler(), _interval, [self = Ref<ThrottleOperator>(this)] { self->intervalEnds(); });
    this->_downstream->receive(std::move(value));
  }

  void intervalEnds() {
    this->passGate([this] {
      _isWaiting = false;
      if (auto held = std::exchange(_held, std::nullopt)) pass(std::move(*held));
    });
  }

  Duration _interval;
  bool _latest;
  bool _isWaiting = false;
  std::optional<Output> _held;
};

template <class Output, class Failure>
class CollectOperator final : public TimedOperator<Output, std::vector<Output>, Failure> {
 public:
  using TimedOperator<Output, std::vector<Output>, Failure>::TimedOperator;

  void begin(Duration interval) {
    this->timers().startRepeating(this->scheduler(), interval, [self = Ref<CollectOperator>(this)](TimePoint) {
      self->passGate([operatorOfTimer = self.get()] { operatorOfTimer->flush(); });
    });
  }

  void receive(Passed<Output> value) override {
    this->passGate([this, value = std::move(value)]() mutable { _held.push_back(std::move(value)); });
  }

 protected:
  void beforeEnd(const Completion<Failure>& completion) override {
    if (!completion.isFailure()) flush();
  }

 private:
  void flush() {
    if (!_held.empty()) this->_downstream->receive(std::exchange(_held, {}));
  }

  std::vector<Output> _held;
};

}  // namespace detail

template <class O, class F>
Publisher<O, F> Publisher<O, F>::receiveOn(Scheduler& scheduler) const {
  return detail::lift<O, F>(*this, [&scheduler](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& scope) {
    auto enqueue = [&scheduler](auto work) { scheduler.schedule(std::move(work)); };
    return makeRef<detail::LaterOperator<O, F, decltype(enqueue)>>(std::move(downstream), scope, enqueue);
  });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::delay(Duration duration, Scheduler& scheduler) const {
  return detail::lift<O, F>(*this, [duration, &scheduler](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& scope) {
    auto enqueue = [duration, &scheduler, timers = Timers::make(scope)](auto work) {
      timers->start(scheduler, duration, std::move(work));
    };
    return makeRef<detail::LaterOperator<O, F, decltype(enqueue)>>(std::move(downstream), scope, enqueue);
  });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::timeout(Duration duration, Scheduler& scheduler, std::optional<F> failure) const {
  return detail::liftEnding<O, F>(
      *this, [duration, &scheduler, failure](Ref<Subscriber<O, F>> downstream, const Ref<Scope>& upstreamScope) {
        auto made =
            makeRef<detail::TimeoutOperator<O, F>>(std::move(downstream), upstreamScope, scheduler, duration, failure);
        made->begin();
        return made;
      });
}

template <class O, class F>
Publisher<O, F> Publisher<O, F>::throttle(Duration interval, Scheduler& scheduler, bool latest) const {
  return detail::liftEnding<O, F>(*this, [interval, &scheduler, latest](Ref<Subscriber<O, F>> downstream,
                                                                        const Ref<Scope>& upstreamScope) {
    return makeRef<detail::ThrottleOperator<O, F>>(std::move(downstream), upstreamScope, scheduler, interval, latest);
  });
}

template <class O, class F>
Publisher<std::vector<O>, F> Publisher<O, F>::collect(Duration interval, Scheduler& scheduler) const {
  return detail::liftEnding<std::vector<O>, F>(
      *this, [interval, &scheduler](Ref<Subscriber<std::vector<O>, F>> downstream, const Ref<Scope>& upstreamScope) {
        auto made = makeRef<detail::CollectOperator<O, F>>(std::move(downstream), upstreamScope, scheduler);
        made->begin(interval);
        return made;
      });
}

}  // namespace kestrom::reactive

#pragma once

#include "Kestrom/Platform/Ref.hpp"
#include "Platform/Reactive/Scope.hpp"

#include <concepts>
#include <optional>
#include <type_traits>
#include <utility>

namespace kestrom::reactive {

/// A failure that cannot happen: there is no value of this type.
struct Never {
  Never() = delete;
  friend bool operator==(const Never&, const Never&) = default;
};

/// Output of a publisher that tells only that something happened.
struct Nothing {
  friend bool operator==(const Nothing&, const Nothing&) = default;
};

/// How a publisher ends.
template <class Failure>
class Completion {
 public:
  static Completion finished() { return {}; }
  static Completion failed(Failure failure)
    requires(!std::same_as<Failure, Never>)
  {
    Completion completion;
    completion._failure = std::move(failure);
    return completion;
  }

  bool isFailure() const { return _failure.has_value(); }
  /// Only of a failing completion.
  const Failure& failure() const& { return *_failure; }
  Failure failure() && { return std::move(*_failure); }

  friend bool operator==(const Completion&, const Completion&) = default;

 private:
  std::optional<Failure> _failure;
};

/// How a value goes from stage to stage: what fits into registers travels in them, all else is handed on in place.
template <class T>
using Passed = std::conditional_t<std::is_trivially_copyable_v<T> && sizeof(T) <= 2 * sizeof(void*), T, T&&>;

/// The receiving end of one stage for one subscription. A source calls `receive` any number of times and then `finish`
/// at most once, one call after the other; what comes after `finish` is a mistake of the source.
template <class Output, class Failure>
class Subscriber : public RefCounted {
 public:
  virtual void receive(Passed<Output> value) = 0;
  virtual void finish(Completion<Failure>&& completion) = 0;
};

}  // namespace kestrom::reactive

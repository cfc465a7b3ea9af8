#pragma once

#include "Platform/Reactive/Publisher.hpp"

#include <optional>
#include <utility>
#include <vector>

namespace kestrom::tests {

/// Subscribes to a publisher for as long as it lives, and keeps what that gives.
template <class Value, class Failure>
class Collected {
 public:
  explicit Collected(const reactive::Publisher<Value, Failure>& publisher)
      : _subscription(publisher.sink(
            [this](reactive::Completion<Failure>&& completion) {
              ++ends;
              if (completion.isFailure()) failure = std::move(completion).failure();
            },
            [this](Value&& value) { values.push_back(std::move(value)); })) {}
  Collected(const Collected&) = delete;
  Collected& operator=(const Collected&) = delete;

  std::vector<Value> values;
  std::optional<Failure> failure;
  int ends = 0;

 private:
  reactive::AnyCancellable _subscription;
};

}  // namespace kestrom::tests

#pragma once

#include "Platform/Reactive/Publisher.hpp"

#include <expected>
#include <optional>
#include <utility>

namespace kestrom::tests {

/// The one value or failure that a publisher gave inside `sink`; nothing when it has given none.
template <class Output, class Failure>
std::optional<std::expected<Output, Failure>> outcomeNow(const reactive::Publisher<Output, Failure>& publisher) {
  std::optional<std::expected<Output, Failure>> outcome;
  const auto token = publisher.sink(
      [&](reactive::Completion<Failure>&& completion) {
        if (completion.isFailure()) outcome = std::unexpected(completion.failure());
      },
      [&](Output&& value) { outcome = std::move(value); });
  return outcome;
}

template <class Output>
std::optional<Output> outcomeNow(const reactive::Publisher<Output, reactive::Never>& publisher) {
  std::optional<Output> outcome;
  const auto token = publisher.sink([&](Output&& value) { outcome = std::move(value); });
  return outcome;
}

}  // namespace kestrom::tests

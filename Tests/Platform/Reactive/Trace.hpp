#pragma once

#include "Platform/Reactive/Publisher.hpp"

#include <concepts>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::reactive {

/// Subscribes, and writes down what arrives as text: the values with a blank before each, then " |" for an end without
/// a failure or " !" and the failure.
class Trace {
 public:
  template <class Output, class Failure>
  explicit Trace(const Publisher<Output, Failure>& publisher) {
    _token = publisher.sink(
        [text = _text](const Completion<Failure>& completion) {
          if constexpr (std::same_as<Failure, Never>) {
            *text += " |";
          } else {
            *text += completion.isFailure() ? " !" + describe(completion.failure()) : " |";
          }
        },
        [text = _text](const Output& value) { *text += " " + describe(value); });
  }

  const std::string& text() const { return *_text; }
  /// What has arrived since the last call.
  std::string news() { return std::exchange(*_text, {}); }
  void cancel() { _token.cancel(); }

 private:
  static std::string describe(const std::string& value) { return value; }
  static std::string describe(int value) { return std::to_string(value); }
  static std::string describe(bool value) { return value ? "true" : "false"; }
  template <class A, class B>
  static std::string describe(const std::pair<A, B>& value) {
    return describe(value.first) + "," + describe(value.second);
  }
  template <class Value>
  static std::string describe(const std::vector<Value>& values) {
    std::string text;
    for (const Value& value : values) text += (text.empty() ? "[" : ",") + describe(value);
    return text + "]";
  }

  std::shared_ptr<std::string> _text = std::make_shared<std::string>();
  AnyCancellable _token;
};

}  // namespace kestrom::reactive

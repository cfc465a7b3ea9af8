#pragma once

#include "Apps/sandbox/HTTPMessage.hpp"
#include "Apps/sandbox/Routes.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <expected>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::sandbox {

/// What goes wrong with a call.
struct Fault {
  /// When the connection is reset.
  enum class Drop : std::uint8_t { never, beforeBody, afterBody, duringResponse, afterResponse };

  /// Whether the server does what was asked, and answers so unless `answer` is there.
  bool isHandled = true;
  /// Takes the place of the server's own answer.
  std::optional<Response> answer;
  std::chrono::duration<double> delay{0};
  Drop drop = Drop::never;
  /// Bytes that are sent in place of an HTTP answer.
  std::optional<std::string> garbage;
  /// The rule as it was written.
  foundation::JSONValue rule;
};

/// The rules of a faults file, and how often each endpoint has been called. Any thread.
class FaultScript {
 public:
  /// The longest delay; what comes later is no answer to anybody.
  static constexpr double kMaximumDelay = 3600;

  /// No faults.
  FaultScript() = default;

  /// The error names the rule and the key.
  static std::expected<FaultScript, std::string> parse(std::string_view text);

  struct Call {
    /// Counted from 1 for each endpoint.
    std::int64_t number = 0;
    /// The first rule that is for this call; lives as long as the script.
    const Fault* fault = nullptr;
  };
  /// Counts a call.
  Call next(Endpoint endpoint);

  FaultScript(FaultScript&& other) noexcept;
  FaultScript& operator=(FaultScript&&) = delete;

 private:
  struct Rule {
    Endpoint endpoint;
    /// Empty for all calls.
    std::vector<std::int64_t> calls;
    Fault fault;
  };
  class Reader;

  std::optional<foundation::JSONDocument> _document;
  std::vector<Rule> _rules;
  std::mutex _mutex;
  std::array<std::int64_t, kEndpointCount> _counts{};
};

}  // namespace kestrom::sandbox

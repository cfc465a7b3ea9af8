#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrom::app {

/// Errors keep a template from being published: the conversation breaks or stops. Warnings tell of something that
/// hardly anybody wants.
enum class Severity : std::uint8_t { warning, error };

/// "warning" or "error".
std::string_view nameOf(Severity severity);

/// One thing that the linter found in a template.
struct Finding {
  /// Where in the document, like "sequence[3].options.values[0].key"; empty for the document itself.
  std::string path;
  Severity severity = Severity::warning;
  /// Name of the rule, of the closed list in LintRules.hpp.
  std::string_view rule;
  /// What is wrong and what happens on the device because of it; one line.
  std::string text;

  friend bool operator==(const Finding&, const Finding&) = default;
};

}  // namespace kestrom::app

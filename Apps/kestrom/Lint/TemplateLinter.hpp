#pragma once

#include "Apps/kestrom/Lint/Finding.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrom::app {

/// What the linter must know beside the template.
struct LintOptions {
  /// The upper bound of a year without "maxValue".
  std::int64_t presentYear = 0;
  /// The raw JSON of a case, an object in which placeholders are looked up; they are not when it is absent.
  std::optional<foundation::JSONValue> caseObject;
};

/// What the linter says about one template.
struct LintResult {
  /// In the order of the document.
  std::vector<Finding> findings;
  /// There are more findings than are told.
  bool isCut = false;
};

/// Checks a template, given as the text of its JSON document, against all rules. What does not decode is told, and the
/// sound rest is checked all the same. A pure function of its arguments; takes no deep stack, however deep the
/// template.
LintResult lintTemplate(std::string_view text, const LintOptions& options);

}  // namespace kestrom::app

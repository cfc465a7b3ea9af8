#pragma once

#include "Apps/kestrom/Lint/Finding.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <optional>
#include <string_view>
#include <vector>

namespace kestrom::app {

/// What the linter says about one template.
struct LintResult {
  /// In the order of the document.
  std::vector<Finding> findings;
  /// There are more findings than are told.
  bool isCut = false;
};

/// Checks a template, given as the text of its JSON document, against all rules. What does not decode is told, and the
/// sound rest is checked all the same. With the JSON object of a case, placeholders are looked up in it.
/// A pure function of its arguments; takes no deep stack, however deep the template.
LintResult lintTemplate(std::string_view text, std::optional<foundation::JSONValue> caseObject = std::nullopt);

}  // namespace kestrom::app

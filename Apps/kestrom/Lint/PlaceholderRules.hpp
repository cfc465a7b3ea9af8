#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <optional>
#include <string_view>

namespace kestrom::app {

/// The rules on placeholders in texts: whole-case-placeholder, unresolved-placeholder, unfilled-placeholder.
class PlaceholderRules {
 public:
  /// Without a case, whether placeholders resolve is not judged. The case's document must outlive this.
  explicit PlaceholderRules(std::optional<foundation::JSONValue> caseObject) : _case(caseObject) {}

  void check(const TemplateVisit& visit, LintReport& report) const;

 private:
  void checkText(std::string_view text, const Place& place, LintReport& report) const;
  void checkPath(std::string_view path, const Place& place, LintReport& report) const;

  std::optional<foundation::JSONValue> _case;
};

}  // namespace kestrom::app

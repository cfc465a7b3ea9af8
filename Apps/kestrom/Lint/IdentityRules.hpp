#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrom::app {

/// The rule on identities, duplicate-id. Keeps the identities of one template, which must outlive it.
class IdentityRules {
 public:
  void check(const TemplateVisit& visit, LintReport& report);

 private:
  struct Use {
    Place place;
    NodeKind kind;
  };

  /// The uses of an identity of which at most one is reached; the first one alone where it stands once.
  std::unordered_map<std::string_view, std::vector<Use>> _uses;
};

}  // namespace kestrom::app

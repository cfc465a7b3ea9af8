#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

#include <string_view>
#include <unordered_map>

namespace kestrom::app {

/// The rule on identities, duplicate-id. Keeps the identities of one template, which must outlive it.
class IdentityRules {
 public:
  void check(const TemplateVisit& visit, LintReport& report);

 private:
  struct FirstUse {
    Place place;
    NodeKind kind;
  };

  std::unordered_map<std::string_view, FirstUse> _firstUses;
};

}  // namespace kestrom::app

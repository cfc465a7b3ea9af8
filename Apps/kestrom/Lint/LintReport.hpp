#pragma once

#include "Apps/kestrom/Lint/DocumentPlaces.hpp"
#include "Apps/kestrom/Lint/Finding.hpp"
#include "Apps/kestrom/Lint/LintRules.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrom::app {

/// Collects what the rules find in one document.
class LintReport {
 public:
  /// Findings of one document that are kept. Nobody reads more, and their paths are long in a hostile one.
  static constexpr std::size_t kMaximumFindings = 10'000;

  void add(const rules::Rule& rule, const Place& place, std::string text) {
    add(rule, rule.severity, place, std::move(text));
  }
  /// The same for a case of the rule that is of another severity.
  void add(const rules::Rule& rule, Severity severity, const Place& place, std::string text);

  /// Whether there were more findings than are kept.
  bool isCut() const { return _isCut; }

  /// The findings in the order of the document; those of one place stay in the order in which they were added.
  std::vector<Finding> inDocumentOrder() &&;

 private:
  struct Entry {
    std::size_t position;
    std::size_t order;
    Finding finding;
  };

  std::vector<Entry> _entries;
  bool _isCut = false;
};

/// A text of the template inside a finding's sentence: in quotes, on one line, cut where it is long.
std::string quoted(std::string_view text);

}  // namespace kestrom::app

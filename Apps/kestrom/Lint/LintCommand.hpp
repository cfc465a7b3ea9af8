#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::app {

/// What `kestrom lint` was called with.
struct LintArguments {
  std::vector<std::string> templates;
  /// The raw JSON of a case, in which placeholders are looked up.
  std::optional<std::string> caseFile;
  /// One JSON object a finding instead of a line for people.
  bool json = false;
};

/// Checks the templates in turn and prints one finding a line to `out`; what cannot be read goes to `err`. Gives the
/// exit status: 1 when there is an error among the findings, when there are too many of them to tell or when a file
/// cannot be read, else 0.
int runLint(const LintArguments& arguments, std::ostream& out, std::ostream& err);

}  // namespace kestrom::app

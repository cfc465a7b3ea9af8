#pragma once

#include <iosfwd>
#include <optional>
#include <string>

namespace kestrom::app {

struct WalkArguments {
  /// Names of files; "-" is the standard input, for one of them at most.
  std::string templateFile;
  std::optional<std::string> answersFile;
  std::optional<std::string> caseFile;
  /// The present time in seconds since 1970; absent means the system's clock.
  std::optional<double> now;
  /// Where the local files of the answers are looked for.
  std::string documentsDirectory = ".";
  bool compact = false;
};

/// Walks a template with the answers given so far and writes the state of the conversation to `out` as one JSON object.
/// Returns the exit status; 1 when a document is unusable, with one line on `err`.
int runWalk(const WalkArguments& arguments, std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace kestrom::app

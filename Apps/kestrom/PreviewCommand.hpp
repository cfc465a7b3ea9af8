#pragma once

#include <iosfwd>
#include <optional>
#include <string>

namespace kestrom::app {

struct PreviewArguments {
  /// Names of files; "-" is the standard input.
  std::string templateFile;
  std::optional<std::string> caseFile;
  /// The device's answers file, in which the conversation is kept; need not exist yet.
  std::optional<std::string> answersFile;
  /// Answers, one a line; without it they are read from the standard input.
  std::optional<std::string> scriptFile;
  /// Where the local files of kept answers are looked for.
  std::string documentsDirectory = ".";
};

/// Runs a template as a chat: with a person or a pipe on `in`, or unattended from a script.
/// Returns the exit status; 1 when a document is unusable, a script's answer is refused, a script runs out before the
/// end, or the conversation cannot go on, each with one line on `err`.
int runPreview(const PreviewArguments& arguments, std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace kestrom::app

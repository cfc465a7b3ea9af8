#include "Apps/kestrom/PreviewTerminal.hpp"

#include "Apps/kestrom/PrintableText.hpp"

#include <unistd.h>

#include <cstdlib>
#include <istream>
#include <ostream>
#include <string_view>

namespace kestrom::app {

namespace {

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kCyan = "\x1b[36m";
constexpr std::string_view kGreen = "\x1b[32m";
constexpr std::string_view kDim = "\x1b[2m";
constexpr std::string_view kPlain = "\x1b[0m";

}  // namespace

PreviewTerminal::Look PreviewTerminal::lookOfStandardStreams() {
  const char* terminal = std::getenv("TERM");
  const char* noColor = std::getenv("NO_COLOR");
  const bool hasColours = terminal != nullptr && std::string_view(terminal) != "dumb";
  const bool wantsColours = noColor == nullptr || *noColor == '\0';
  return {.isColoured = isatty(STDOUT_FILENO) == 1 && hasColours && wantsColours,
          .isInteractive = isatty(STDIN_FILENO) == 1};
}

void PreviewTerminal::show(std::span<const PreviewEvent> events) {
  for (const PreviewEvent& event : events) show(event);
  _out.flush();
}

void PreviewTerminal::show(const PreviewEvent& event) {
  using Kind = PreviewEvent::Kind;
  switch (event.kind) {
    case Kind::bot:
      return print("bot: ", kCyan, event.text);
    case Kind::user:
      return print("you: ", kGreen, event.text);
    case Kind::option:
      return print("  ", {}, event.text);
    case Kind::doneOption:
      return print("  ", kDim, event.text + "  [done]");
    case Kind::prompt:
    case Kind::notice:
      return print({}, kDim, event.text);
    case Kind::finished:
      return print({}, kBold, event.text);
    case Kind::refusal:
    case Kind::stuck:
      // What was shown so far comes first where both streams end in one terminal.
      _out.flush();
      return fault(event.text);
  }
}

void PreviewTerminal::fault(std::string_view text) {
  _err << printableText(text, LineBreaks::escape) << std::endl;
}

void PreviewTerminal::print(std::string_view prefix, std::string_view colour, std::string_view text) {
  // The lines of a bubble stand below each other, so that no line of a template can pass for one of the preview's own.
  const LineBreaks lineBreaks = prefix.empty() ? LineBreaks::escape : LineBreaks::keep;
  const bool isColoured = _look.isColoured && !colour.empty();
  if (isColoured) _out << colour;
  _out << prefix;
  for (const char character : printableText(text, lineBreaks)) {
    _out << character;
    if (character == '\n') _out << std::string(prefix.size(), ' ');
  }
  if (isColoured) _out << kPlain;
  _out << '\n';
}

std::optional<std::string> PreviewTerminal::readLine() {
  if (_look.isInteractive) _out << "> " << std::flush;
  std::string line;
  if (!std::getline(_in, line)) {
    if (_look.isInteractive) _out << std::endl;
    return {};
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace kestrom::app

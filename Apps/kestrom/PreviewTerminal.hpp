#pragma once

#include "Apps/kestrom/PreviewEvent.hpp"

#include <iosfwd>
#include <optional>
#include <span>
#include <string>

namespace kestrom::app {

/// Where a preview is shown and lines are read: bubbles, choices and the finished state on one stream, refusals and
/// faults on the other. The terminal stays in its ordinary mode, line by line, so that an interrupt leaves nothing
/// behind. One thread.
class PreviewTerminal {
 public:
  struct Look {
    bool isColoured = false;
    /// A mark is shown where a line is awaited.
    bool isInteractive = false;
  };

  PreviewTerminal(std::istream& in, std::ostream& out, std::ostream& err, Look look)
      : _in(in), _out(out), _err(err), _look(look) {}

  /// The look that fits the process's standard streams: colours only on a terminal that has them and whose user has not
  /// asked for none (NO_COLOR), the mark only for a person.
  static Look lookOfStandardStreams();

  /// Shows all events and flushes.
  void show(std::span<const PreviewEvent> events);

  /// One line of what went wrong.
  void fault(std::string_view text);

  /// The next line without its line break; absent at the end of the input. Call from one place only.
  std::optional<std::string> readLine();

 private:
  void show(const PreviewEvent& event);
  void print(std::string_view prefix, std::string_view colour, std::string_view text);

  std::istream& _in;
  std::ostream& _out;
  std::ostream& _err;
  Look _look;
};

}  // namespace kestrom::app

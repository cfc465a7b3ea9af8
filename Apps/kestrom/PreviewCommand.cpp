#include "Apps/kestrom/PreviewCommand.hpp"

#include "Apps/kestrom/Composition.hpp"
#include "Apps/kestrom/InputDocuments.hpp"
#include "Apps/kestrom/PreviewSession.hpp"
#include "Apps/kestrom/PreviewTerminal.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Platform/Foundation/Text.hpp"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace kestrom::app {

namespace {

using Status = PreviewSession::Status;

std::optional<std::string> findMediaFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return {};
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) return {};
  return absolute.lexically_normal().string();
}

/// Feeds a session with the lines of a terminal, shows what it gives and keeps its answers.
class PreviewRun {
 public:
  PreviewRun(PreviewSession& session, PreviewTerminal& terminal, const PreviewArguments& arguments)
      : _session(session), _terminal(terminal), _arguments(arguments) {}

  int run() {
    if (!show(_session.start())) return 1;
    while (_session.status() == Status::asking) {
      const auto line = nextLine();
      if (!line) return endOfLines();
      if (!show(_session.take(*line))) return 1;
    }
    if (_session.status() == Status::stuck) return 1;
    if (_session.status() == Status::finished && _arguments.scriptFile && nextLine()) {
      _terminal.fault(place() + ": the conversation is finished, this line and the rest are not read");
    }
    return 0;
  }

 private:
  std::optional<std::string> nextLine() {
    while (auto line = _terminal.readLine()) {
      ++_lineNumber;
      const bool isPassedOver =
          _arguments.scriptFile && (foundation::trimmedBlanks(*line).empty() || line->starts_with('#'));
      if (!isPassedOver) return line;
    }
    return {};
  }

  int endOfLines() {
    if (!_arguments.scriptFile) return 0;
    _terminal.fault(place() + ": the script ends before the conversation; pending is " + _session.pendingQuestion());
    return 1;
  }

  /// False when the run cannot go on: what was answered cannot be kept, or a script's line was refused.
  bool show(std::span<const PreviewEvent> events) {
    // An answer is on the disk before its bubble is on the screen.
    if (_arguments.answersFile && _session.revision() != _keptRevision) {
      if (const auto kept = keepAnswers(*_arguments.answersFile, _session.answers()); !kept) {
        _terminal.fault(kept.error());
        return false;
      }
      _keptRevision = _session.revision();
    }
    const bool isRefused = !events.empty() && events.front().kind == PreviewEvent::Kind::refusal;
    if (isRefused && _arguments.scriptFile) {
      _terminal.fault(place() + ": " + events.front().text);
      return false;
    }
    _terminal.show(events);
    return true;
  }

  std::string place() const { return *_arguments.scriptFile + ":" + std::to_string(_lineNumber); }

  PreviewSession& _session;
  PreviewTerminal& _terminal;
  const PreviewArguments& _arguments;
  std::size_t _lineNumber = 0;
  std::size_t _keptRevision = 0;
};

std::expected<int, std::string> preview(const PreviewArguments& arguments, std::istream& in, std::ostream& out,
                                        std::ostream& err) {
  const auto botTemplate = loadTemplate(arguments.templateFile, in);
  if (!botTemplate) return std::unexpected(botTemplate.error());
  std::shared_ptr<const foundation::JSONDocument> rawCase;
  if (arguments.caseFile) {
    auto loaded = loadCase(*arguments.caseFile, in);
    if (!loaded) return std::unexpected(loaded.error());
    rawCase = std::move(*loaded);
  }
  const foundation::URL documentsDirectory = directoryURL(arguments.documentsDirectory);
  std::vector<models::BotAPIAnswerDTO> answers;
  if (arguments.answersFile) {
    auto kept = loadKeptAnswers(*arguments.answersFile, documentsDirectory);
    if (!kept) return std::unexpected(kept.error());
    answers = std::move(*kept);
  }
  std::istringstream script;
  if (arguments.scriptFile) {
    auto text = loadScript(*arguments.scriptFile, in);
    if (!text) return std::unexpected(text.error());
    script.str(std::move(*text));
  }

  PreviewTerminal::Look look = PreviewTerminal::lookOfStandardStreams();
  look.isInteractive = look.isInteractive && !arguments.scriptFile;
  PreviewTerminal terminal(arguments.scriptFile ? script : in, out, err, look);
  const services::NativeBotEngine engine(systemTime);
  const services::ConversationConversion conversion = makeConversion(std::move(rawCase), systemTime);
  PreviewSession session(*botTemplate, engine, conversion, std::move(answers),
                         {systemTime, findMediaFile, documentsDirectory});
  return PreviewRun(session, terminal, arguments).run();
}

}  // namespace

int runPreview(const PreviewArguments& arguments, std::istream& in, std::ostream& out, std::ostream& err) {
  const auto status = preview(arguments, in, out, err);
  if (status) return *status;
  err << status.error() << '\n';
  return 1;
}

}  // namespace kestrom::app

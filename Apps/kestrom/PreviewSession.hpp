#pragma once

#include "Apps/kestrom/CaptureInput.hpp"
#include "Apps/kestrom/PreviewEvent.hpp"
#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/BotAnswer.hpp"
#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/Message.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Core/Services/Bot/ChatBot.hpp"
#include "Core/Services/Bot/ConversationConversion.hpp"
#include "Kestrom/Platform/Date.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::app {

/// A template run as a chat, without screen, files and server: takes lines, gives what there is to show. It answers as
/// the chat of the phone does: statements continue by themselves, typed input is held to the same rules, an edit
/// replaces the earlier answer. Used by one thread.
class PreviewSession {
 public:
  /// What it takes from outside.
  struct Surroundings {
    std::function<foundation::Date()> now;
    FindMediaFile findMediaFile;
    /// Where the local files of kept answers are looked for.
    foundation::URL documentsDirectory;
  };

  enum class Status : std::uint8_t { asking, finished, stuck, quit };

  /// `keptAnswers` are those of an earlier session.
  PreviewSession(const models::BotTemplate& botTemplate, const services::ChatBot& chatBot,
                 const services::ConversationConversion& conversion, std::vector<models::BotAPIAnswerDTO> keptAnswers,
                 Surroundings surroundings);

  /// Shows the conversation so far and the pending question. Called once, before all lines.
  std::vector<PreviewEvent> start();

  /// Takes an answer to the pending question or a command; only while the status is `asking`. A line that
  /// is refused changes nothing; the refusal comes first, then the question again. A blank line asks again too.
  std::vector<PreviewEvent> take(std::string_view line);

  Status status() const { return _status; }

  /// Names the node that is asked for.
  std::string pendingQuestion() const;

  /// All answers so far, in the order of their giving, in the form of the device's answers file.
  const std::vector<models::BotAPIAnswerDTO>& answers() const { return _answers; }

  /// Grows with each change of the answers.
  std::size_t revision() const { return _revision; }

 private:
  using Events = std::vector<PreviewEvent>;
  using AnswerOrRefusal = std::expected<models::BotAnswer, std::string>;

  void obey(std::string_view command, Events& events);
  void edit(Events& events);
  void showState(Events& events) const;

  AnswerOrRefusal answerOf(std::string_view line) const;
  AnswerOrRefusal typedAnswer(const models::BotTextMessage& question, std::string_view line) const;
  AnswerOrRefusal choice(const models::SingleSelectionMessage& question, std::string_view line) const;
  AnswerOrRefusal choices(const models::MultipleSelectionMessage& question, std::string_view line) const;

  void submit(models::BotAnswer answer, bool isEdit);
  void advance(Events& events);
  bool continueStatement();
  void showNewRows(Events& events);
  void showQuestion(Events& events) const;
  std::optional<std::string> reasonToStop() const;
  const models::ConversationDTO::MessageDTO& pending() const;

  const models::BotTemplate& _template;
  const services::ChatBot& _chatBot;
  const services::ConversationConversion& _conversion;
  Surroundings _surroundings;
  /// The answers twice, entry by entry: as they are kept, and as the walk reads them. What was just given the walk
  /// reads as it was given; some of that is lost once it was kept, so the second does not follow from the first.
  std::vector<models::BotAPIAnswerDTO> _answers;
  std::vector<models::NativeBotEngineAnswerDTO> _history;
  std::size_t _revision = 0;
  models::ConversationDTO _walk;
  services::Conversation _conversation;
  /// The rows on the screen; the last one asks.
  std::vector<models::Message> _rows;
  std::vector<PreviewEvent> _shownBubbles;
  bool _isEditing = false;
  Status _status = Status::asking;
};

}  // namespace kestrom::app

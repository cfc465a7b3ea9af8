#include "Apps/kestrom/PreviewSession.hpp"

#include "Apps/kestrom/ChoiceInput.hpp"
#include "Apps/kestrom/InputRules.hpp"
#include "Apps/kestrom/PrintableText.hpp"
#include "Core/Models/AnswerConversion.hpp"
#include "Platform/Foundation/Text.hpp"
#include "Platform/Imaging/ImageCodec.hpp"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <span>
#include <utility>

namespace kestrom::app {

using models::BotAnswer;
using models::BotTextMessage;
using models::ChatInputTrigger;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using Kind = PreviewEvent::Kind;
using LocalAction = SingleSelectionMessage::Option::LocalAction;

namespace {

/// The parts of an answer that come from the question's row.
template <class Question>
BotAnswer answerTo(const Question& question, BotAnswer::Value value, BotAnswer::BotAnswerType type) {
  BotAnswer answer;
  answer.value = std::move(value);
  answer.type = type;
  answer.iterationId = question.iterationId;
  answer.messageId = question.id;
  answer.messageKey = question.messageKey;
  answer.moduleId = question.moduleId;
  answer.moduleKey = question.moduleKey;
  answer.messageType = question.messageType;
  answer.context = question.cvEndpoint;
  return answer;
}

template <class Options>
std::vector<std::string_view> keysOf(const Options& options) {
  std::vector<std::string_view> keys;
  for (const auto& option : options) keys.push_back(option.id);
  return keys;
}

bool opensCapture(LocalAction action) {
  return action != LocalAction::declineCapture && action != LocalAction::location;
}

/// What has to follow the choice of an option.
std::string_view supplement(const std::optional<LocalAction>& action) {
  if (!action || *action == LocalAction::declineCapture) return {};
  if (*action == LocalAction::location) return "ADDRESS";
  if (*action == LocalAction::panorama || *action == LocalAction::meshscan) return "TAR-FILE IMAGE-FILE";
  return "FILE";
}

std::string boundsText(const InputBounds& bounds) {
  if (bounds.min && bounds.max) return ", " + std::to_string(*bounds.min) + " to " + std::to_string(*bounds.max);
  if (bounds.min) return ", at least " + std::to_string(*bounds.min);
  if (bounds.max) return ", at most " + std::to_string(*bounds.max);
  return {};
}

/// What a bubble asks to be typed.
struct InputDemand {
  std::string_view name;
  InputBounds bounds;
  std::optional<std::string> (*refusal)(std::string_view text, const InputBounds& bounds);
};

/// Absent for a bubble that asks for nothing.
std::optional<InputDemand> inputDemand(const BotTextMessage& message) {
  if (!message.trigger) return {};
  if (const auto* year = std::get_if<ChatInputTrigger::Year>(&message.trigger->form)) {
    return InputDemand{"year", {year->min, year->max}, yearRefusal};
  }
  if (const auto* number = std::get_if<ChatInputTrigger::Number>(&message.trigger->form)) {
    return InputDemand{"number", {number->min, number->max}, numberRefusal};
  }
  if (const auto* text = std::get_if<ChatInputTrigger::Text>(&message.trigger->form)) {
    return InputDemand{"text", {text->min, text->max}, textRefusal};
  }
  return {};
}

std::vector<PreviewEvent> bubblesOf(std::span<const models::Message> rows) {
  std::vector<PreviewEvent> bubbles;
  for (const models::Message& row : rows) {
    if (const auto* bot = std::get_if<BotTextMessage>(&row.form)) bubbles.push_back({Kind::bot, bot->text});
    if (const auto* user = std::get_if<models::UserTextMessage>(&row.form)) bubbles.push_back({Kind::user, user->text});
    if (const auto* photo = std::get_if<models::UserPhotoMessage>(&row.form)) {
      const auto* url = std::get_if<models::UserPhotoMessage::State::SuccessURL>(&photo->state.form);
      bubbles.push_back({Kind::user, url == nullptr ? "photo" : "photo " + url->url.absoluteString()});
    }
    if (const auto* video = std::get_if<models::UserVideoMessage>(&row.form)) {
      const auto* url = std::get_if<models::UserVideoMessage::State::Success>(&video->state.form);
      bubbles.push_back({Kind::user, url == nullptr ? "video" : "video " + url->url.absoluteString()});
    }
  }
  return bubbles;
}

/// Why the last of the rows cannot be answered; absent when it can.
std::optional<std::string> flawOfQuestion(std::span<const models::Message> rows) {
  if (!rows.empty()) {
    const models::Message& row = rows.back();
    const auto* single = std::get_if<SingleSelectionMessage>(&row.form);
    const auto* multiple = std::get_if<MultipleSelectionMessage>(&row.form);
    const auto* text = std::get_if<BotTextMessage>(&row.form);
    if (single != nullptr && !single->options.empty()) return {};
    if (multiple != nullptr && !multiple->options.empty()) return {};
    const auto demand = text == nullptr ? std::nullopt : inputDemand(*text);
    if (demand && demand->bounds.areInverted())
      return "takes no input: its range is empty" + boundsText(demand->bounds);
    if (demand) return {};
  }
  return "offers nothing to answer with";
}

}  // namespace

PreviewSession::PreviewSession(const models::BotTemplate& botTemplate, const services::ChatBot& chatBot,
                               const services::ConversationConversion& conversion,
                               std::vector<models::BotAPIAnswerDTO> keptAnswers, Surroundings surroundings)
    : _template(botTemplate),
      _chatBot(chatBot),
      _conversion(conversion),
      _surroundings(std::move(surroundings)),
      _answers(std::move(keptAnswers)) {
  std::ranges::transform(_answers, std::back_inserter(_history), [this](const models::BotAPIAnswerDTO& answer) {
    return models::engineAnswer(answer, _surroundings.documentsDirectory);
  });
}

std::vector<PreviewEvent> PreviewSession::start() {
  Events events;
  advance(events);
  return events;
}

std::vector<PreviewEvent> PreviewSession::take(std::string_view line) {
  Events events;
  if (foundation::trimmedBlanks(line).empty()) {
    showQuestion(events);
  } else if (!isUTF8(line)) {
    events.push_back({Kind::refusal, "the line is no UTF-8 text"});
  } else if (line.starts_with('/')) {
    obey(foundation::trimmedBlanks(line), events);
  } else if (auto answer = answerOf(line)) {
    submit(std::move(*answer), std::exchange(_isEditing, false));
    advance(events);
  } else {
    events.push_back({Kind::refusal, std::move(answer.error())});
  }
  const bool wasRefused = !events.empty() && events.back().kind == Kind::refusal;
  if (wasRefused) showQuestion(events);
  return events;
}

void PreviewSession::obey(std::string_view command, Events& events) {
  if (command == "/edit") {
    edit(events);
  } else if (command == "/state") {
    showState(events);
  } else if (command == "/quit") {
    _status = Status::quit;
  } else {
    events.push_back({Kind::refusal, "no such command; there are /edit, /state and /quit"});
  }
}

void PreviewSession::edit(Events& events) {
  const auto editable = std::ranges::find_if(_rows, [](const models::Message& row) { return row.isEditable(); });
  const auto& question = _conversation.editableMessages;
  if (editable == _rows.end() || !question || flawOfQuestion(*question)) {
    events.push_back({Kind::refusal, "there is no answer that can be edited now"});
    return;
  }
  // The rows before it stay, the question takes the place of its answer and of all that follows.
  _rows.erase(editable, _rows.end());
  _shownBubbles = bubblesOf(_rows);
  _rows.insert(_rows.end(), question->begin(), question->end());
  _isEditing = true;
  showNewRows(events);
  showQuestion(events);
}

void PreviewSession::showState(Events& events) const {
  const auto& progress = _walk.progress;
  const auto notice = [&events](std::string text) { events.push_back({Kind::notice, std::move(text)}); };
  notice("progress: " + std::to_string(progress.currentModuleCount) + " of " +
         std::to_string(progress.totalModuleCount) + " modules, " + std::to_string(_answers.size()) + " answers");
  const auto& question = pending();
  notice("pending: " + pendingQuestion() + (_isEditing ? ", being edited" : ""));
  notice("module: \"" + question.moduleId.value_or("") + "\", key \"" + question.moduleKey.value_or("") + '"');
  notice("iteration: " + (question.iterationId ? std::to_string(*question.iterationId) : "none"));
}

std::string PreviewSession::pendingQuestion() const {
  const auto& question = pending();
  return '"' + question.messageId.value_or("") + "\", key \"" + question.messageKey.value_or("") + "\", type " +
         std::string(question.type ? models::wireString(*question.type) : "none");
}

PreviewSession::AnswerOrRefusal PreviewSession::answerOf(std::string_view line) const {
  const models::Message& row = _rows.back();
  if (const auto* question = std::get_if<SingleSelectionMessage>(&row.form)) return choice(*question, line);
  if (const auto* question = std::get_if<MultipleSelectionMessage>(&row.form)) return choices(*question, line);
  return typedAnswer(std::get<BotTextMessage>(row.form), line);
}

PreviewSession::AnswerOrRefusal PreviewSession::typedAnswer(const BotTextMessage& question,
                                                            std::string_view line) const {
  const InputDemand demand = inputDemand(question).value();
  if (auto refusal = demand.refusal(line, demand.bounds)) return std::unexpected(std::move(*refusal));
  return answerTo(question, {BotAnswer::Value::String{std::string(line), question.messageKey}},
                  BotAnswer::BotAnswerType::regular);
}

PreviewSession::AnswerOrRefusal PreviewSession::choice(const SingleSelectionMessage& question,
                                                       std::string_view line) const {
  const auto input = parseChoice(line, keysOf(question.options));
  if (!input)
    return std::unexpected("no option has this number or key: " + std::string(foundation::trimmedBlanks(line)));
  const auto& option = question.options[input->option];
  const std::string_view wanted = supplement(option.localAction);
  if (wanted.empty() != input->rest.empty()) {
    const std::string number = std::to_string(input->option + 1);
    return std::unexpected(wanted.empty() ? "nothing may follow option " + number
                                          : "write: " + number + " " + std::string(wanted));
  }
  if (option.localAction == LocalAction::location) {
    // A typed address has no coordinates, and without them the answer carries no place.
    return answerTo(question, {BotAnswer::Value::String{std::string(input->rest), question.messageKey}},
                    BotAnswer::BotAnswerType::location);
  }
  if (option.localAction && opensCapture(*option.localAction)) {
    auto media = readCapture(*option.localAction, input->rest, question.messageKey, _surroundings.findMediaFile);
    if (!media) return std::unexpected(std::move(media.error()));
    return answerTo(question, std::move(media->value), media->type);
  }
  return answerTo(question, {BotAnswer::Value::String{option.text, option.id}}, BotAnswer::BotAnswerType::regular);
}

PreviewSession::AnswerOrRefusal PreviewSession::choices(const MultipleSelectionMessage& question,
                                                        std::string_view line) const {
  const auto& options = question.options;
  const auto keys = keysOf(options);
  std::vector<std::size_t> chosen;
  for (const auto piece : std::views::split(line, ',')) {
    const std::string_view text = foundation::trimmedBlanks(std::string_view(piece.begin(), piece.end()));
    const auto input = parseChoice(text, keys);
    if (!input || !input->rest.empty()) {
      return std::unexpected("no option has this number or key: " + std::string(text));
    }
    const std::size_t option = input->option;
    if (std::ranges::find(chosen, option) != chosen.end()) {
      return std::unexpected("option " + std::to_string(option + 1) + " is chosen twice");
    }
    // One that stands for none of the others and the ordinary ones put each other out.
    std::erase_if(chosen,
                  [&](std::size_t other) { return options[option].deselectOthers || options[other].deselectOthers; });
    chosen.push_back(option);
  }
  BotAnswer::Value::StringArray texts;
  for (const std::size_t option : chosen) texts.values.push_back({options[option].text, options[option].id});
  return answerTo(question, {std::move(texts)}, BotAnswer::BotAnswerType::regular);
}

void PreviewSession::submit(BotAnswer answer, bool isEdit) {
  ++_revision;
  answer.timestamp = _surroundings.now();
  models::BotAPIAnswerDTO kept = models::apiAnswer(answer, false);
  models::NativeBotEngineAnswerDTO read = models::engineAnswer(answer, imaging::NoImageCodec());
  if (isEdit) {
    for (std::size_t index = _history.size(); index-- > 0;) {
      const auto& earlier = _history[index];
      if (earlier.messageId == read.messageId && earlier.moduleId == read.moduleId &&
          earlier.iterationId == read.iterationId) {
        _history[index] = std::move(read);
        _answers[index] = std::move(kept);
        return;
      }
    }
  }
  _history.push_back(std::move(read));
  _answers.push_back(std::move(kept));
}

void PreviewSession::advance(Events& events) {
  do {
    _walk = _chatBot.conversation(_history, _template.sequence);
  } while (continueStatement());
  _conversation = _conversion.convert(_walk);
  _rows = _conversation.messages;
  showNewRows(events);
  if (_walk.progress.isFinished) {
    _status = Status::finished;
    events.push_back({Kind::finished, "finished: " + std::to_string(_walk.progress.currentModuleCount) + " of " +
                                          std::to_string(_walk.progress.totalModuleCount) + " modules, " +
                                          std::to_string(_answers.size()) + " answers"});
  } else if (auto reason = reasonToStop()) {
    _status = Status::stuck;
    events.push_back({Kind::stuck, std::move(*reason)});
  } else {
    showQuestion(events);
  }
}

/// Answers the pending question if it is a statement; false when it is none.
bool PreviewSession::continueStatement() {
  if (_walk.progress.isFinished || _walk.updatedMessages.empty()) return false;
  const auto rows = _conversion.messages(_walk.updatedMessages.back());
  const auto* statement = rows.empty() ? nullptr : std::get_if<BotTextMessage>(&rows.back().form);
  if (statement == nullptr || !statement->trigger) return false;
  if (!std::holds_alternative<ChatInputTrigger::AutomaticallyContinueWithNextMessage>(statement->trigger->form))
    return false;
  submit(
      answerTo(*statement, {BotAnswer::Value::Empty{}}, BotAnswer::BotAnswerType::automaticallyContinueWithNextMessage),
      false);
  return true;
}

void PreviewSession::showNewRows(Events& events) {
  // The chat replaces its whole list; on paper only what is new is worth a line.
  Events bubbles = bubblesOf(_rows);
  const auto firstNew = std::ranges::mismatch(_shownBubbles, bubbles).in2;
  events.insert(events.end(), firstNew, bubbles.end());
  _shownBubbles = std::move(bubbles);
}

void PreviewSession::showQuestion(Events& events) const {
  const auto option = [&events](std::size_t index, const auto& content, bool isDone, std::string_view wanted) {
    std::string text = std::to_string(index + 1) + ") " + content.text;
    if (!wanted.empty()) text += "  [" + std::to_string(index + 1) + ' ' + std::string(wanted) + ']';
    events.push_back({isDone ? Kind::doneOption : Kind::option, std::move(text)});
  };
  const models::Message& row = _rows.back();
  if (const auto* single = std::get_if<SingleSelectionMessage>(&row.form)) {
    for (std::size_t index = 0; index < single->options.size(); ++index) {
      const auto& content = single->options[index];
      option(index, content, content.wasFulfilled, supplement(content.localAction));
    }
    events.push_back({Kind::prompt, "(one choice)"});
  } else if (const auto* multiple = std::get_if<MultipleSelectionMessage>(&row.form)) {
    for (std::size_t index = 0; index < multiple->options.size(); ++index) {
      const auto& content = multiple->options[index];
      option(index, content, false, content.deselectOthers ? std::string_view("alone") : std::string_view());
    }
    events.push_back({Kind::prompt, "(one or more choices, separated by commas)"});
  } else if (const auto demand = inputDemand(std::get<BotTextMessage>(row.form))) {
    const std::string unit = demand->name == "text" && !boundsText(demand->bounds).empty() ? " characters" : "";
    events.push_back({Kind::prompt, '(' + std::string(demand->name) + boundsText(demand->bounds) + unit + ')'});
  }
}

/// Why an unfinished conversation cannot go on; absent when it can.
std::optional<std::string> PreviewSession::reasonToStop() const {
  if (_walk.updatedMessages.empty() || !_walk.updatedMessages.back().type) {
    return "the conversation is not finished, but asks nothing: an answer to a menu matches none of its arms";
  }
  const auto flaw = flawOfQuestion(_rows);
  if (!flaw) return {};
  return "the conversation cannot go on: the question " + pendingQuestion() + ' ' + *flaw;
}

const models::ConversationDTO::MessageDTO& PreviewSession::pending() const {
  return _isEditing ? *_walk.lastEditableAnswer : _walk.updatedMessages.back();
}

}  // namespace kestrom::app

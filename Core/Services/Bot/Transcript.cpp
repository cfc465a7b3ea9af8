#include "Core/Services/Bot/Transcript.hpp"

#include "Core/Services/Bot/FlatIndex.hpp"

#include <optional>
#include <utility>

namespace kestrom::services {

using models::BotNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using MessageDTO = ConversationDTO::MessageDTO;
using OptionsDTO = MessageDTO::OptionsDTO;
using Type = MessageDTO::MessageTypeDTO;

std::string_view WalkedNode::text() const {
  if (replacingText) return *replacingText;
  return node->text ? std::string_view(*node->text) : std::string_view{};
}

std::string_view WalkedNode::repeatText() const {
  return node->repeatText ? std::string_view(*node->repeatText) : text();
}

// Nearly every answer becomes one message, and a question follows them.
Transcript::Transcript(std::span<const NativeBotEngineAnswerDTO> answers, foundation::Date now)
    : _answers(answers), _now(now.secondsSince1970()) {
  _messages.reserve(answers.size() + 1);
}

void Transcript::appendAnswered(const NativeBotEngineAnswerDTO& answer, std::string_view text,
                                const NodeDetails& details) {
  MessageDTO& message = _messages.emplace_back();
  auto& entries = message.answers.emplace();
  entries.reserve(answer.answers.size());
  for (const ConversationDTO::AnswerDTO& entry : answer.answers) {
    // Where a medium is kept does not concern the chat.
    if (entry.key != "mediaUrl") entries.push_back(entry);
  }
  message.text = text;
  message.messageId = answer.messageId;
  message.timestamp = answer.timestamp;
  message.editable = false;
  message.iterationId = answer.iterationId;
  _lastNode = details;
}

void Transcript::appendQuestion(const NodeDetails& details) {
  append(question(details));
}

void Transcript::appendMenuAgain(const NodeDetails& details, std::span<const std::uint32_t> chosen) {
  MessageDTO message = question(details);
  message.text = details.node.repeatText();
  message.timestamp.reset();
  markCompleted(message, chosen);
  message.type = Type::selectSingleModule;
  append(std::move(message));
}

MessageDTO Transcript::question(const NodeDetails& details) const {
  MessageDTO message;
  message.text = details.node.text();
  message.messageId = details.node->id;
  message.timestamp = _now;
  message.options = details.node->options;
  message.type = details.node->type;
  message.editable = false;
  message.iterationId = details.iterationId;
  message.messageKey = details.node->key;
  message.moduleId = details.module->id;
  message.moduleKey = details.module->key;
  return message;
}

void Transcript::append(MessageDTO question) {
  if (_lastNode && !_messages.empty() && _lastNode->node->type != Type::bot) {
    _messages.back().editable = true;
    _lastEditableAnswer = revisableQuestion(*_lastNode);
  }
  _messages.push_back(std::move(question));
}

MessageDTO Transcript::revisableQuestion(const NodeDetails& details) const {
  MessageDTO message = question(details);
  message.editable = true;
  const BotNode& node = *details.node.node;
  if (!node.adventures || node.adventures->empty()) return message;

  // A menu is shown as it stood before its last choice, which is the one to revise.
  std::vector<std::uint32_t> chosen;
  for (std::uint32_t answer = 0; answer < _answers.size(); ++answer) {
    if (_answers[answer].messageId == node.id) chosen.push_back(answer);
  }
  if (!chosen.empty()) chosen.pop_back();
  if (!chosen.empty()) message.text = details.node.repeatText();
  markCompleted(message, chosen);
  return message;
}

/// Completed are those choices of a menu whose keys are among the chosen answers.
void Transcript::markCompleted(MessageDTO& menu, std::span<const std::uint32_t> chosen) const {
  if (!menu.options || !menu.options->values) return;
  std::vector<std::string_view> keys;
  keys.reserve(chosen.size());
  for (const std::uint32_t answer : chosen) {
    for (const ConversationDTO::AnswerDTO& entry : _answers[answer].answers) keys.push_back(entry.key);
  }
  // Most menus are worked through from the top, so the next key is looked at before a table is made of all.
  std::optional<FlatIndex> index;
  const auto keyOf = [&](std::uint32_t number) { return keys[number]; };
  std::size_t next = 0;
  for (OptionsDTO::ValueDTO& value : *menu.options->values) {
    value.completed = next < keys.size() && keys[next] == value.key;
    if (*value.completed) {
      ++next;
      continue;
    }
    if (!index) {
      index.emplace(keys.size());
      for (std::uint32_t number = 0; number < keys.size(); ++number) {
        index->insert(keys[number], hashOf(keys[number]), number, keyOf);
      }
    }
    const std::uint32_t found = index->find(value.key, hashOf(value.key), keyOf);
    value.completed = found != FlatIndex::kNone;
    if (found != FlatIndex::kNone) next = found + 1;
  }
}

ConversationDTO Transcript::finish(const ConversationDTO::ProgressDTO& progress) && {
  return {progress, std::move(_lastEditableAnswer), std::move(_messages)};
}

}  // namespace kestrom::services

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::app {

using models::BotNode;
using models::ConversationDTO;
using Option = ConversationDTO::MessageDTO::OptionsDTO::ValueDTO;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

/// What answers when the option was tapped, by the node's type.
std::vector<std::vector<std::string>> answersBehind(const Option& option, const BotNode& node) {
  // The address has the node's key at first, and none once it was read back from the history.
  if (node.type == Type::location) return {{node.key}, {""}};
  if (!opensCamera(node.type) || !option.showCamera.value_or(true)) return {{option.key}};
  switch (node.type) {
    case Type::fnol:
      return {{"mediaUrl"}};
    case Type::panorama:
    case Type::meshscan:
      return {{"mediaUrl", "thumbnailUrl"}};
    default:
      return {{node.key}};
  }
}

}  // namespace

AnswerForm answerFormOf(const BotNode& node) {
  switch (node.type) {
    case Type::module:
      return AnswerForm::none;
    case Type::bot:
      return node.options ? AnswerForm::singleChoice : AnswerForm::automatic;
    case Type::year:
    case Type::text:
    case Type::number:
      return AnswerForm::typed;
    case Type::selectMultiple:
      return AnswerForm::multipleChoice;
    default:
      return AnswerForm::singleChoice;
  }
}

bool opensCamera(Type type) {
  return type == Type::photo || type == Type::video || type == Type::panorama || type == Type::fnol ||
         type == Type::meshscan;
}

bool asksForChoice(const BotNode& node) {
  const AnswerForm form = answerFormOf(node);
  return form == AnswerForm::singleChoice || form == AnswerForm::multipleChoice;
}

const std::vector<Option>& optionsOf(const BotNode& node) {
  static const std::vector<Option> none;
  return node.options && node.options->values ? *node.options->values : none;
}

std::vector<std::vector<std::string>> singleChoiceAnswers(const BotNode& node) {
  std::vector<std::vector<std::string>> answers;
  for (const Option& option : optionsOf(node)) {
    for (auto& answer : answersBehind(option, node)) answers.push_back(std::move(answer));
  }
  std::ranges::sort(answers);
  const auto repeated = std::ranges::unique(answers);
  answers.erase(repeated.begin(), repeated.end());
  return answers;
}

std::vector<std::string> firstAnswerKeys(const BotNode& node) {
  std::vector<std::string> keys;
  switch (answerFormOf(node)) {
    case AnswerForm::none:
      break;
    case AnswerForm::automatic:
      keys.emplace_back();
      break;
    case AnswerForm::typed:
      keys.push_back(node.key);
      break;
    case AnswerForm::singleChoice:
      for (auto& answer : singleChoiceAnswers(node)) keys.push_back(std::move(answer.front()));
      break;
    case AnswerForm::multipleChoice:
      for (const Option& option : optionsOf(node)) keys.push_back(option.key);
      break;
  }
  return keys;
}

}  // namespace kestrom::app

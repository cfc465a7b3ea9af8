#include "Tests/Support/ChatPerson.hpp"

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::tests {

using models::BotAnswer;
using models::BotTextMessage;
using models::ChatInputTrigger;
using models::MultipleSelectionMessage;
using models::SingleSelectionMessage;
using LocalAction = SingleSelectionMessage::Option::LocalAction;
using Type = BotAnswer::BotAnswerType;
using Value = BotAnswer::Value;

namespace {

template <class Question>
BotAnswer answerTo(const Question& question, Value value, Type type = Type::regular) {
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

foundation::URL uploaded(const char* ending, const Draw& draw) {
  return foundation::URL::parse("https://media.kestrom.example/" + std::to_string(draw(1'000'000)) + ending).value();
}

std::optional<BotAnswer> typed(const BotTextMessage& question, const Draw& draw) {
  if (!question.trigger) return std::nullopt;
  const auto text = [&](std::string typed) {
    return answerTo(question, {Value::String{std::move(typed), question.messageKey}});
  };
  const auto& form = question.trigger->form;
  if (std::holds_alternative<ChatInputTrigger::AutomaticallyContinueWithNextMessage>(form)) {
    return answerTo(question, {Value::Empty{}}, Type::automaticallyContinueWithNextMessage);
  }
  if (const auto* year = std::get_if<ChatInputTrigger::Year>(&form)) return text(std::to_string(year->max));
  if (const auto* number = std::get_if<ChatInputTrigger::Number>(&form)) {
    return text(std::to_string(number->min.value_or(0) + static_cast<std::int64_t>(draw(3))));
  }
  return text("caf\xC3\xA9 \"" + std::to_string(draw(1'000'000)) + "\" \xF0\x9F\x8F\xA0");
}

BotAnswer chosen(const SingleSelectionMessage& question, const Draw& draw) {
  // Who goes the same way twice gives the same answers anew, of which only the last are kept.
  std::vector<SingleSelectionMessage::Option> options;
  std::ranges::copy_if(question.options, std::back_inserter(options),
                       [](const auto& each) { return !each.wasFulfilled; });
  if (options.empty()) options = question.options;
  const auto& option = options[draw(options.size())];
  switch (option.localAction.value_or(LocalAction::declineCapture)) {
    case LocalAction::photo:
      return answerTo(question, {Value::Url{uploaded(".jpeg", draw), question.messageKey, false}}, Type::url);
    case LocalAction::video:
      return answerTo(question, {Value::Url{uploaded(".mp4", draw), question.messageKey, false}}, Type::url);
    case LocalAction::panorama:
    case LocalAction::fnol:
    case LocalAction::meshscan:
      return answerTo(question, {Value::MediaBundle{uploaded(".zip", draw), uploaded(".jpeg", draw), false}},
                      Type::mediaBundle);
    case LocalAction::location: {
      BotAnswer answer = answerTo(question, {Value::String{"1 Main Street", question.messageKey}}, Type::location);
      answer.location = {BotAnswer::Location::Precise{"1 Main Street", 52.3702, 4.8952}};
      return answer;
    }
    case LocalAction::declineCapture:
      break;
  }
  return answerTo(question, {Value::String{option.text, option.id}});
}

BotAnswer chosen(const MultipleSelectionMessage& question, const Draw& draw) {
  Value::StringArray values;
  for (const auto& option : question.options) {
    if (!option.deselectOthers && draw(2) == 0) values.values.push_back({option.text, option.id});
  }
  if (values.values.empty()) values.values.push_back({question.options[0].text, question.options[0].id});
  return answerTo(question, {std::move(values)});
}

}  // namespace

std::optional<BotAnswer> answerOfAPerson(const services::Conversation& conversation, const Draw& draw) {
  if (conversation.messages.empty()) return std::nullopt;
  const auto& last = conversation.messages.back().form;
  if (const auto* statement = std::get_if<BotTextMessage>(&last)) return typed(*statement, draw);
  if (const auto* single = std::get_if<SingleSelectionMessage>(&last)) return chosen(*single, draw);
  if (const auto* multiple = std::get_if<MultipleSelectionMessage>(&last)) return chosen(*multiple, draw);
  return std::nullopt;
}

std::optional<BotAnswer> scriptedAnswer(const services::Conversation& conversation) {
  std::minstd_rand random(static_cast<unsigned>(conversation.messages.size() + 1));
  random.discard(8);
  return answerOfAPerson(conversation, [&](std::size_t bound) { return random() % bound; });
}

}  // namespace kestrom::tests

#include "Core/Services/Bot/ConditionalEvaluation.hpp"

#include "Core/Services/Bot/LowerCase.hpp"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kestrom::services {

using models::BotNode;
using models::ConditionalNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using Case = ConditionalNode::Case;
using Operator = Case::Operator;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

namespace {

/// Length of the well-formed UTF-8 sequence at the start of `bytes`, which is not empty; 0 when there is none.
std::size_t sequenceLength(std::string_view bytes) {
  const auto at = [&](std::size_t index) { return static_cast<std::uint8_t>(bytes[index]); };
  const std::uint8_t lead = at(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length) return 0;
  // The second byte's range shuts out overlong forms, surrogates and what lies beyond the last code point.
  const std::uint8_t lowest = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
  const std::uint8_t highest = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
  if (at(1) < lowest || at(1) > highest) return 0;
  for (std::size_t index = 2; index < length; ++index) {
    if (at(index) < 0x80 || at(index) > 0xbf) return 0;
  }
  return length;
}

bool isUTF8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = sequenceLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string_view textOf(const ConversationDTO::AnswerDTO::Value& value) {
  using Value = ConversationDTO::AnswerDTO::Value;
  if (const auto* string = std::get_if<Value::String>(&value.form)) return string->text;
  if (const auto* url = std::get_if<Value::Url>(&value.form)) return url->url.absoluteString();
  const auto& bytes = std::get<Value::Data>(value.form).bytes;
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return isUTF8(text) ? text : std::string_view{};
}

std::string flatten(const NativeBotEngineAnswerDTO& answer, Type type) {
  const bool isTyped = type == Type::year || type == Type::text || type == Type::number;
  std::string flat;
  for (const ConversationDTO::AnswerDTO& entry : answer.answers) {
    if (&entry != &answer.answers.front()) flat += ';';
    flat += isTyped ? textOf(entry.value) : std::string_view(entry.key);
  }
  return flat;
}

/// Absent unless the whole of `text` is one number.
std::optional<double> numberOf(const std::string& text) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  constexpr std::string_view kBadStarts("\0\t\n\v\f\r ", 7);
  if (text.empty() || kBadStarts.contains(text.front())) return std::nullopt;
  char* end = nullptr;
  const double number = strtod_l(text.c_str(), &end, cLocale);
  // A NUL inside ends the parse before the end.
  if (end != text.c_str() + text.size()) return std::nullopt;
  return number;
}

std::optional<bool> boolOf(std::string_view text) {
  if (text == "1" || readsInLowerCase(text, "true")) return true;
  if (text == "0" || readsInLowerCase(text, "false")) return false;
  return std::nullopt;
}

/// The answer as the guards see it. Flattened when the first case asks for it, and read as a number once.
class TestedAnswer {
 public:
  TestedAnswer(const NativeBotEngineAnswerDTO& answer, Type type) : _answer(answer), _type(type) {}

  bool passes(const Case& test) {
    return std::visit([&](const auto& value) { return passes(test.operation, value); }, test.value.form);
  }

 private:
  bool passes(Operator operation, const Case::Value::Number& wanted) {
    if (!_wasRead) _number = numberOf(text());
    _wasRead = true;
    if (!_number) return false;
    switch (operation) {
      case Operator::equal:
        return *_number == wanted.value;
      case Operator::notEqual:
        return *_number != wanted.value;
      case Operator::greaterThan:
        return *_number > wanted.value;
      case Operator::lessThan:
        return *_number < wanted.value;
      case Operator::contains:
      case Operator::doesNotContain:
        return false;
    }
    return false;
  }

  bool passes(Operator operation, const Case::Value::String& wanted) {
    const std::string& given = text();
    switch (operation) {
      case Operator::equal:
        return given == wanted.value;
      case Operator::notEqual:
        return given != wanted.value;
      case Operator::greaterThan:
        return given > wanted.value;
      case Operator::lessThan:
        return given < wanted.value;
      case Operator::contains:
        return given.contains(wanted.value);
      case Operator::doesNotContain:
        return !given.contains(wanted.value);
    }
    return false;
  }

  bool passes(Operator operation, const Case::Value::Bool& wanted) {
    const std::optional<bool> given = boolOf(text());
    if (operation == Operator::equal) return given && *given == wanted.value;
    if (operation == Operator::notEqual) return given && *given != wanted.value;
    return false;
  }

  const std::string& text() {
    if (!_text) _text = flatten(_answer, _type);
    return *_text;
  }

  const NativeBotEngineAnswerDTO& _answer;
  Type _type;
  std::optional<std::string> _text;
  bool _wasRead = false;
  std::optional<double> _number;
};

}  // namespace

const ConditionalNode::Branch* selectBranch(const NativeBotEngineAnswerDTO& answer, const BotNode& node,
                                            std::span<const ConditionalNode> branches) {
  TestedAnswer tested(answer, node.type);
  const auto passes = [&](const Case& test) { return tested.passes(test); };
  for (const ConditionalNode& guard : branches) {
    const bool holds = guard.logicalOperator == ConditionalNode::LogicalOperator::AND
                           ? std::ranges::all_of(guard.cases, passes)
                           : std::ranges::any_of(guard.cases, passes);
    if (holds) return guard.branch ? &*guard.branch : nullptr;
  }
  return nullptr;
}

}  // namespace kestrom::services

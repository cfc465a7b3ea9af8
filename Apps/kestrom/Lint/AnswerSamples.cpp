#include "Apps/kestrom/Lint/AnswerSamples.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <ranges>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace kestrom::app {

using models::BotNode;
using models::ConditionalNode;
using models::ConversationDTO;
using models::NativeBotEngineAnswerDTO;
using Case = ConditionalNode::Case;
using Operator = Case::Operator;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;
using Value = ConversationDTO::AnswerDTO::Value;

namespace {

/// Stands between the keys of a selection where guards see it.
constexpr char kSeparator = ';';

/// Options of a multiple choice of which all selections in all orders are tried: 1,957 of them.
constexpr std::size_t kMaximumOrdinaryOptions = 6;

/// Characters that the field of a year takes.
constexpr std::size_t kYearLength = 4;

NativeBotEngineAnswerDTO answerWithKeys(const std::vector<std::string>& keys) {
  NativeBotEngineAnswerDTO answer;
  for (const std::string& key : keys) answer.answers.push_back({key, Value::string("")});
  return answer;
}

NativeBotEngineAnswerDTO answerWithText(const BotNode& node, std::string text) {
  NativeBotEngineAnswerDTO answer;
  answer.answers.push_back({node.key, Value::string(std::move(text))});
  return answer;
}

std::string numberText(double number) {
  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, number);
  return {buffer, written.ptr};
}

/// The literals of all guards of a node.
struct Literals {
  std::set<double> numbers;
  std::set<std::string, std::less<>> strings;

  explicit Literals(const BotNode& node) {
    for (const ConditionalNode& guard : *node.branches) {
      for (const Case& test : guard.cases) {
        if (const auto* number = std::get_if<Case::Value::Number>(&test.value.form)) numbers.insert(number->value);
        if (const auto* string = std::get_if<Case::Value::String>(&test.value.form)) strings.insert(string->value);
      }
    }
  }
};

/// What an input accepts: any text, or only whole numbers within bounds.
struct TypedBounds {
  bool isWholeNumber = false;
  std::int64_t low = std::numeric_limits<std::int64_t>::min();
  std::int64_t high = std::numeric_limits<std::int64_t>::max();

  TypedBounds(const BotNode& node, std::int64_t presentYear) {
    const auto options = node.options.value_or(ConversationDTO::MessageDTO::OptionsDTO{});
    if (node.type == Type::year) {
      isWholeNumber = true;
      low = options.minValue.value_or(kEarliestYear);
      high = options.maxValue.value_or(presentYear);
    } else if (node.type == Type::number) {
      isWholeNumber = options.minValue || options.maxValue;
      low = options.minValue.value_or(low);
      high = options.maxValue.value_or(high);
    }
  }
};

/// A whole number as the input accepts it.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

/// The same number written in a way that no guard names.
std::string spelledOtherwise(std::string text, const Literals& literals) {
  const char sign = text.starts_with('-') ? '-' : '+';
  text.erase(0, text.starts_with('-') ? 1 : 0);
  do text.insert(0, 1, '0');
  while (literals.strings.contains(sign + text));
  return sign + text;
}

/// The whole numbers within the bounds at which a guard can change its mind, in each way of writing that matters.
std::set<std::string> wholeNumberTexts(const TypedBounds& bounds, const Literals& literals, bool isYear) {
  // A double that is no 64-bit integer any more has no neighbours to look at.
  constexpr double kLimit = 9.0e18;
  std::set<std::int64_t> numbers{bounds.low, bounds.high};
  const auto addAround = [&](std::int64_t middle) {
    for (std::int64_t offset = -2; offset <= 2; ++offset) {
      std::int64_t number = 0;
      if (!__builtin_add_overflow(middle, offset, &number)) numbers.insert(number);
    }
  };
  for (const double literal : literals.numbers) {
    if (std::abs(literal) < kLimit) addAround(static_cast<std::int64_t>(std::floor(literal)));
  }
  std::set<std::string> texts;
  for (const std::string& literal : literals.strings) {
    const auto number = wholeNumber(literal);
    if (!number) continue;
    addAround(*number);
    if (*number >= bounds.low && *number <= bounds.high) texts.insert(literal);
  }
  for (const std::int64_t number : numbers) {
    if (number < bounds.low || number > bounds.high) continue;
    texts.insert(std::to_string(number));
    const std::string otherwise = spelledOtherwise(std::to_string(number), literals);
    if (!isYear || otherwise.size() <= kYearLength) texts.insert(otherwise);
  }
  return texts;
}

/// Texts of all kinds that guards tell apart by number, boolean or being equal to a string.
std::set<std::string> anyTexts(const Literals& literals) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::set<double> numbers{0, 1, -kInfinity, kInfinity};
  numbers.insert(literals.numbers.begin(), literals.numbers.end());
  for (const double literal : literals.numbers) {
    numbers.insert(std::nextafter(literal, -kInfinity));
    numbers.insert(std::nextafter(literal, kInfinity));
  }
  std::set<std::string> texts(literals.strings.begin(), literals.strings.end());
  for (const double number : numbers) {
    texts.insert(numberText(number));
    if (std::isfinite(number)) texts.insert(spelledOtherwise(numberText(number), literals));
  }
  texts.insert({"nan", "NAN", "inf", "INF", "true", "True", "TRUE", "false", "False", "FALSE"});
  std::string other = "?";
  while (literals.strings.contains(other)) other += '?';
  texts.insert(other);
  return texts;
}

}  // namespace

AnswerSamples::AnswerSamples(const BotNode& node, std::int64_t presentYear) {
  switch (answerFormOf(node)) {
    case AnswerForm::none:
      break;
    case AnswerForm::automatic:
      _answers.push_back(answerWithKeys({""}));
      break;
    case AnswerForm::typed:
      addTyped(node, presentYear);
      break;
    case AnswerForm::singleChoice:
      addChoices(node);
      break;
    case AnswerForm::multipleChoice:
      addSelections(node);
      break;
  }
}

bool AnswerSamples::areEnoughFor(const Case& test) const {
  const auto* string = std::get_if<Case::Value::String>(&test.value.form);
  if (string == nullptr || _coverage == Coverage::complete) return true;
  if (test.operation == Operator::greaterThan || test.operation == Operator::lessThan) return false;
  const bool isEquality = test.operation == Operator::equal || test.operation == Operator::notEqual;
  if (_coverage == Coverage::typed) return isEquality;
  return !_isAmbiguous && (isEquality || !string->value.contains(kSeparator));
}

void AnswerSamples::addChoices(const BotNode& node) {
  for (const auto& keys : singleChoiceAnswers(node)) _answers.push_back(answerWithKeys(keys));
}

void AnswerSamples::addSelections(const BotNode& node) {
  std::vector<std::string> ordinary;
  _answers.push_back(answerWithKeys({}));
  for (const auto& option : optionsOf(node)) {
    if (option.deselectOthers.value_or(false)) {
      _answers.push_back(answerWithKeys({option.key}));
    } else {
      ordinary.push_back(option.key);
    }
  }
  if (ordinary.size() > kMaximumOrdinaryOptions) {
    return addSomeSelections(node, ordinary);
  }

  // Every selection is a shorter one with one more tick behind it.
  std::vector<std::vector<std::size_t>> selections{{}};
  for (std::size_t at = 0; at < selections.size(); ++at) {
    for (std::size_t option = 0; option < ordinary.size(); ++option) {
      if (std::ranges::find(selections[at], option) != selections[at].end()) continue;
      std::vector<std::size_t> longer = selections[at];
      longer.push_back(option);
      std::vector<std::string> keys;
      for (const std::size_t index : longer) keys.push_back(ordinary[index]);
      _answers.push_back(answerWithKeys(keys));
      selections.push_back(std::move(longer));
    }
  }
}

void AnswerSamples::addSomeSelections(const BotNode& node, const std::vector<std::string>& ordinaryKeys) {
  _coverage = Coverage::single;
  _isAmbiguous = std::ranges::any_of(ordinaryKeys, [](const std::string& key) { return key.contains(kSeparator); });
  for (const std::string& key : ordinaryKeys) _answers.push_back(answerWithKeys({key}));
  // Any two keys stand for all selections that are no single key: none of them reads as a number or a boolean.
  _answers.push_back(answerWithKeys({ordinaryKeys[0], ordinaryKeys[1]}));
  for (const std::string& literal : Literals(node).strings) {
    std::vector<std::string> keys;
    for (const auto part : std::views::split(literal, kSeparator)) keys.emplace_back(part.begin(), part.end());
    const auto isOption = [&](const std::string& key) {
      return std::ranges::find(ordinaryKeys, key) != ordinaryKeys.end();
    };
    const std::set<std::string> distinct(keys.begin(), keys.end());
    if (distinct.size() == keys.size() && std::ranges::all_of(keys, isOption)) {
      _answers.push_back(answerWithKeys(keys));
    }
  }
}

void AnswerSamples::addTyped(const BotNode& node, std::int64_t presentYear) {
  _coverage = Coverage::typed;
  const Literals literals(node);
  const TypedBounds bounds(node, presentYear);
  const auto texts =
      bounds.isWholeNumber ? wholeNumberTexts(bounds, literals, node.type == Type::year) : anyTexts(literals);
  for (const std::string& text : texts) _answers.push_back(answerWithText(node, text));
}

}  // namespace kestrom::app

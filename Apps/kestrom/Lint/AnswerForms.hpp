#pragma once

#include "Core/Models/BotTemplate.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrom::app {

/// Lower bound of a year without "minValue".
inline constexpr std::int64_t kEarliestYear = 1800;

/// How the chat takes the answer to a node.
enum class AnswerForm : std::uint8_t {
  none,            ///< nothing is shown, so that nobody can answer
  automatic,       ///< a statement, which the chat answers by itself
  typed,           ///< text, number or year
  singleChoice,    ///< one option, behind which a capture or the address form may open
  multipleChoice,  ///< any number of options
};

AnswerForm answerFormOf(const models::BotNode& node);

/// Whether an option of such a node opens a capture, unless it declines. A location opens the address page instead.
bool opensCamera(models::ConversationDTO::MessageDTO::MessageTypeDTO type);

/// Whether the chat offers the node's options; without any, the question then has no answer.
bool asksForChoice(const models::BotNode& node);

/// The node's options; empty when it has none.
const std::vector<models::ConversationDTO::MessageDTO::OptionsDTO::ValueDTO>& optionsOf(const models::BotNode& node);

/// The keys of each answer that a single choice can end in, without repetition. An option that opens a capture does not
/// answer with its own key.
std::vector<std::vector<std::string>> singleChoiceAnswers(const models::BotNode& node);

/// The keys with which an answer to the node can begin, whatever kind of question it is.
std::vector<std::string> firstAnswerKeys(const models::BotNode& node);

}  // namespace kestrom::app

#pragma once

#include "Core/Models/BotAnswer.hpp"
#include "Core/Services/Bot/Conversation.hpp"

#include <cstddef>
#include <functional>
#include <optional>

namespace kestrom::tests {

/// Draws a number below its argument.
using Draw = std::function<std::size_t(std::size_t)>;

/// Somebody's answer to the question that a conversation ends with; absent when it ends with none. Media are given by
/// an address on the web, as if they had been uploaded. The moment is left for the caller.
std::optional<models::BotAnswer> answerOfAPerson(const services::Conversation& conversation, const Draw& draw);

/// The answer of somebody who says the same at the same point of a conversation, whenever that is.
std::optional<models::BotAnswer> scriptedAnswer(const services::Conversation& conversation);

}  // namespace kestrom::tests

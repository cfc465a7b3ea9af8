#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"

#include <span>

namespace kestrom::services {

/// The branch of the first guard of `branches` that holds for the answer to `node`; null when none holds, or when that
/// guard has no branch. Guards test the answer as one text: what was typed, or the keys that were chosen, joined with
/// ";". Strings are compared by their UTF-8 bytes, numbers are read as in C whatever the process's locale.
/// The result lives as long as `branches`.
const models::ConditionalNode::Branch* selectBranch(const models::NativeBotEngineAnswerDTO& answer,
                                                    const models::BotNode& node,
                                                    std::span<const models::ConditionalNode> branches);

}  // namespace kestrom::services

#pragma once

#include "Core/Models/Message.hpp"

#include <cstddef>
#include <span>

namespace kestrom::ui {

/// Place of the bot bubble at `index` within the run of the bot's rows that it stands in; a run shows one avatar.
models::BotMessageGroupingGuide groupingGuide(std::span<const models::Message> rows, std::size_t index);

}  // namespace kestrom::ui

#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/BotAnswer.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Platform/Imaging/ImageCodec.hpp"

#include <optional>

/// An answer in its three forms: as the chat builds it, as server and device keep it, as the walk reads it. Pure
/// functions; any thread.
namespace kestrom::models {

/// The form for server and file. A `value` that does not fit the answer's `type` is a programmer's mistake and ends the
/// process.
BotAPIAnswerDTO apiAnswer(const BotAnswer& answer, std::optional<bool> wasSynced);

/// The form for the walk of an answer that was just given. A picture becomes a JPEG of best quality; one that cannot be
/// encoded leaves no bytes.
NativeBotEngineAnswerDTO engineAnswer(const BotAnswer& answer, const imaging::ImageCodec& codec);

/// The form for the walk of an answer that was kept. Addresses of local files are moved onto the documents directory.
NativeBotEngineAnswerDTO engineAnswer(const BotAPIAnswerDTO& answer, const foundation::URL& documentsDirectory);

/// The chat's form of an answer that was kept, for its delivery. Absent for an address whose "locationType" is none
/// that the kit writes: nothing can be said of where it is.
std::optional<BotAnswer> botAnswer(const BotAPIAnswerDTO& answer, const foundation::URL& documentsDirectory);

}  // namespace kestrom::models

#pragma once

#include "Core/Models/ConversationDTO.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"
#include "Core/Models/NodeList.hpp"

#include <span>

namespace kestrom::services {

/// Tells the state of a conversation from a template and the answers given so far.
class ChatBot {
 public:
  virtual ~ChatBot() = default;

  /// `answers` are in the order of their submission, `sequence` is the list of a template's root. Cannot fail and
  /// changes nothing; the result shares nothing with the arguments. Runs on the thread that calls it.
  virtual models::ConversationDTO conversation(std::span<const models::NativeBotEngineAnswerDTO> answers,
                                               const models::NodeList& sequence) const = 0;
};

}  // namespace kestrom::services

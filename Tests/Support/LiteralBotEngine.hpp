#pragma once

#include "Core/Services/Bot/ChatBot.hpp"

namespace kestrom::tests {

/// The walk in its plainest form, to compare with: it recurses, copies each list that it enters and searches the lists
/// of answers and messages from their start. For small templates only.
class LiteralBotEngine final : public services::ChatBot {
 public:
  explicit LiteralBotEngine(double now) : _now(now) {}

  models::ConversationDTO conversation(std::span<const models::NativeBotEngineAnswerDTO> answers,
                                       const models::NodeList& sequence) const override;

 private:
  double _now;
};

}  // namespace kestrom::tests

#pragma once

#include "Core/Services/Bot/ChatBot.hpp"
#include "Kestrom/Platform/Date.hpp"

#include <functional>

namespace kestrom::services {

/// Walks the template on the device. Each call starts at the first node and rebuilds everything from the answers, so
/// that resuming, going on after an answer and evaluating anew after an edit are one operation. Holds no state of a
/// conversation; as thread-safe as its clock.
///
/// A walk is cut short where a template multiplies itself beyond reason (nested repeats whose gates consume nothing):
/// the conversation is then unfinished and has no pending question.
class NativeBotEngine final : public ChatBot {
 public:
  /// `now` gives the timestamp of questions; it is called once a call.
  explicit NativeBotEngine(std::function<foundation::Date()> now);

  models::ConversationDTO conversation(std::span<const models::NativeBotEngineAnswerDTO> answers,
                                       const models::NodeList& sequence) const override;

 private:
  std::function<foundation::Date()> _now;
};

}  // namespace kestrom::services

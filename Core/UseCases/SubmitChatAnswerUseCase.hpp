#pragma once

#include "Core/Services/Bot/BotEngine.hpp"

namespace kestrom::usecases {

/// Takes an answer of the chat.
class SubmitChatAnswerUseCase {
 public:
  virtual ~SubmitChatAnswerUseCase() = default;

  /// The answer is taken inside the call, whether somebody subscribes or not.
  virtual reactive::Publisher<services::BotEngine::Result, services::AnyError> execute(
      services::BotEngine::Submission submission) = 0;
};

}  // namespace kestrom::usecases

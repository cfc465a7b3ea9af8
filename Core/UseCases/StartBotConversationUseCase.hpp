#pragma once

#include "Core/Services/Bot/BotEngine.hpp"

namespace kestrom::usecases {

/// Takes up the conversation of a case.
class StartBotConversationUseCase {
 public:
  virtual ~StartBotConversationUseCase() = default;

  virtual reactive::Publisher<services::BotEngine::Result, services::AnyError> execute() = 0;
};

}  // namespace kestrom::usecases

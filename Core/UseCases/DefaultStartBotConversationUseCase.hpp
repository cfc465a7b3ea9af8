#pragma once

#include "Core/UseCases/StartBotConversationUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultStartBotConversationUseCase final : public StartBotConversationUseCase {
 public:
  explicit DefaultStartBotConversationUseCase(std::shared_ptr<services::BotEngine> engine)
      : _engine(std::move(engine)) {}

  reactive::Publisher<services::BotEngine::Result, services::AnyError> execute() override { return _engine->start(); }

 private:
  std::shared_ptr<services::BotEngine> _engine;
};

}  // namespace kestrom::usecases

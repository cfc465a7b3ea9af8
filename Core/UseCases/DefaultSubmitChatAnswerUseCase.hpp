#pragma once

#include "Core/UseCases/SubmitChatAnswerUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultSubmitChatAnswerUseCase final : public SubmitChatAnswerUseCase {
 public:
  explicit DefaultSubmitChatAnswerUseCase(std::shared_ptr<services::BotEngine> engine) : _engine(std::move(engine)) {}

  reactive::Publisher<services::BotEngine::Result, services::AnyError> execute(
      services::BotEngine::Submission submission) override {
    return _engine->submit(std::move(submission));
  }

 private:
  std::shared_ptr<services::BotEngine> _engine;
};

}  // namespace kestrom::usecases

#pragma once

#include "Core/Models/KestromObjectDetails.hpp"
#include "Core/Services/Bot/AnswerService.hpp"
#include "Core/Services/Bot/BotEngine.hpp"
#include "Core/Services/Bot/ChatBot.hpp"
#include "Core/Services/Bot/HandleBarParser.hpp"
#include "Kestrom/Platform/AnyCancellable.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Imaging/ImageCodec.hpp"

#include <memory>

namespace kestrom::services {

/// Holds all answers of the conversation and has the whole template walked anew after each. Submissions that are under
/// way end with it.
class DefaultBotEngine final : public BotEngine {
 public:
  struct Parts {
    models::KestromObjectDetails kestromObject;
    std::shared_ptr<const ChatBot> chatbot;
    std::shared_ptr<AnswerService> answerService;
    HandleBarParser handlebarParser;
    std::shared_ptr<const imaging::ImageCodec> imageCodec;
    /// Onto which the addresses of local files in the history are moved.
    foundation::URL documentsDirectory;
    /// Outlives the engine and its publishers.
    const foundation::Clock& clock;
  };

  explicit DefaultBotEngine(Parts parts);

  reactive::Publisher<Result, AnyError> start() override;
  reactive::Publisher<Result, AnyError> submit(Submission submission) override;

 private:
  class Session;

  std::shared_ptr<Session> _session;
  reactive::Cancellables _cancellables;
};

}  // namespace kestrom::services

#include "Core/Services/Bot/NativeBotEngine.hpp"

#include "Core/Services/Bot/TemplateWalk.hpp"

#include <utility>

namespace kestrom::services {

NativeBotEngine::NativeBotEngine(std::function<foundation::Date()> now) : _now(std::move(now)) {}

models::ConversationDTO NativeBotEngine::conversation(std::span<const models::NativeBotEngineAnswerDTO> answers,
                                                      const models::NodeList& sequence) const {
  return TemplateWalk(answers, _now()).run(sequence);
}

}  // namespace kestrom::services

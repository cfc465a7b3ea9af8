// Any bytes as a template and as the answers to it: decoded, walked, and told in rows of JSON, or refused with a
// reason.

#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrom;
  // The first NUL byte parts the template from the answers; without one the template is walked with no answers.
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t split = text.find('\0');

  const auto document = foundation::JSONDocument::parse(text.substr(0, split));
  if (!document) return 0;
  foundation::DecodingOptions options;
  const auto decoded = models::decodeBotTemplate(*document, options);
  options.collectAllErrors = true;
  const auto collected = models::decodeBotTemplate(*document, options);
  if (decoded.has_value() != collected.has_value()) std::abort();
  if (!decoded) {
    if (decoded.error().front() != collected.error().front()) std::abort();
    return 0;
  }

  std::vector<models::NativeBotEngineAnswerDTO> answers;
  if (split != std::string_view::npos) {
    auto read = foundation::decodeJSON<std::vector<models::NativeBotEngineAnswerDTO>>(text.substr(split + 1), {});
    if (read) answers = std::move(*read);
  }
  const services::NativeBotEngine engine([] { return foundation::Date{}; });
  const models::ConversationDTO conversation = engine.conversation(answers, decoded->sequence);
  for (const auto& message : conversation.updatedMessages) foundation::encodeJSON(message);
  return 0;
}

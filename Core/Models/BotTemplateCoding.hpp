#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/ConversationCoding.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <expected>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

/// Where the document is decoded by `decodeDocument` or what stands on it, as the lists of nodes wait for their turn.
template <>
struct Coder<models::BotTemplate> {
  static void decode(models::BotTemplate& out, JSONValue value, DecodingContext& context);
};

}  // namespace kestrom::foundation

namespace kestrom::models {

/// Decodes a template from the text of its JSON document. Any fault aborts it; the first one is told, with its path.
std::expected<BotTemplate, foundation::DecodingError> decodeBotTemplate(std::string_view text);

/// The same from a parsed document; every fault is told where the options ask for that.
std::expected<BotTemplate, std::vector<foundation::DecodingError>> decodeBotTemplate(
    const foundation::JSONDocument& document, const foundation::DecodingOptions& options);

/// The sound parts of a template that may have errors, with the errors.
foundation::TolerantlyDecoded<BotTemplate> decodeBotTemplateTolerantly(const foundation::JSONDocument& document);

}  // namespace kestrom::models

#pragma once

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/URLRequest.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrom::tests {

/// The text with a fraction at each date: the kit writes none, and reads only dates that have one, as a server sends
/// them.
inline std::string withFractions(std::string_view json) {
  std::string text;
  for (std::size_t index = 0; index < json.size(); ++index) {
    const bool isEndOfDate = json.substr(index).starts_with("Z\"") && index > 3 && json[index - 3] == ':';
    if (isEndOfDate) text += ".000";
    text += json[index];
  }
  return text;
}

/// The body of a server's answer to a request for a history.
inline std::string historyBody(const std::vector<models::BotAPIAnswerDTO>& answers) {
  return withFractions(
      foundation::encodeJSON(models::AnswersHistoryResponse{answers}, foundation::DateStrategy::iso8601));
}

/// The answer that a request brings to the server.
inline models::BotAPIAnswerDTO sentAnswer(const networking::URLRequest& request) {
  const auto decoder = services::answersDecoder(foundation::URL::fromFilePath("/"));
  return foundation::decodeJSON<models::BotAPIAnswerDTO>(withFractions(foundation::textOf(request.body.value())),
                                                         decoder)
      .value();
}

}  // namespace kestrom::tests

// Any bytes as the answers of a case, as the server's history and as the device's file, with both date forms: what
// decodes is converted to all forms, written and read again.

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/ConversationCoding.hpp"

#include <cmath>
#include <cstdlib>

namespace {

using namespace kestrom;
using foundation::DateStrategy;
using foundation::DecodingOptions;
using models::BotAPIAnswerDTO;

void require(bool holds) {
  if (!holds) std::abort();
}

/// Dates of the wire are written in whole seconds, and only those of years with four digits. A fraction that is lost in
/// the sum of the seconds since 1970 is none that the text could carry.
bool hasExactText(foundation::Date date) {
  const double seconds = date.secondsSince1970();
  return std::abs(seconds) < 1e10 && std::trunc(seconds) == seconds &&
         foundation::Date::fromSecondsSince1970(seconds) == date;
}

template <class Document>
std::optional<Document> decoded(const foundation::JSONDocument& json, DecodingOptions options) {
  auto first = foundation::decodeDocument<Document>(json, options);
  options.collectAllErrors = true;
  const auto collected = foundation::decodeDocument<Document>(json, options);
  require(first.has_value() == collected.has_value());
  if (first) return std::move(*first);
  require(first.error().front() == collected.error().front());
  return std::nullopt;
}

void checkAnswer(const BotAPIAnswerDTO& answer, const DecodingOptions& options) {
  const std::string kept = foundation::encodeJSON(answer);
  require(foundation::decodeJSON<BotAPIAnswerDTO>(kept, {.documentsDirectory = options.documentsDirectory}) == answer);
  if (hasExactText(answer.answeredAt)) {
    // What the kit sends has a date without a fraction, which the server's answers never have.
    std::string sent = foundation::encodeJSON(answer, DateStrategy::iso8601);
    const std::size_t zone = sent.rfind("Z\"");
    sent.insert(zone, ".000");
    const DecodingOptions wire{.dates = DecodingOptions::Dates::answers,
                               .documentsDirectory = options.documentsDirectory};
    require(foundation::decodeJSON<BotAPIAnswerDTO>(sent, wire) == answer);
  }

  const auto walked = models::engineAnswer(answer, options.documentsDirectory);
  foundation::encodeJSON(walked.answers);
  const auto given = models::botAnswer(answer, options.documentsDirectory);
  if (!given) return;
  models::engineAnswer(*given, imaging::NoImageCodec());
  const BotAPIAnswerDTO delivered = models::apiAnswer(*given, answer.wasSynced);
  // A second delivery sends what the first one sent, but that a place without an address comes back as a precise one.
  const auto again = models::botAnswer(delivered, options.documentsDirectory);
  require(again.has_value());
  BotAPIAnswerDTO repeated = models::apiAnswer(*again, answer.wasSynced);
  if (!std::holds_alternative<models::LocationDTO>(delivered.value.form) && repeated.locationType == "precise" &&
      delivered.locationType == "relative") {
    repeated.locationType = delivered.locationType;
  }
  require(repeated == delivered);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto json = foundation::JSONDocument::parse({reinterpret_cast<const char*>(data), size});
  if (!json) return 0;
  for (const auto dates : {DecodingOptions::Dates::secondsSinceReferenceDate, DecodingOptions::Dates::answers}) {
    const DecodingOptions options{.dates = dates, .documentsDirectory = foundation::URL::fromFilePath("/now/My Files")};
    if (const auto history = decoded<models::AnswersHistoryResponse>(*json, options)) {
      for (const BotAPIAnswerDTO& answer : history->answers) checkAnswer(answer, options);
    }
    if (const auto file = decoded<std::vector<BotAPIAnswerDTO>>(*json, options)) {
      for (const BotAPIAnswerDTO& answer : *file) checkAnswer(answer, options);
    }
  }
  return 0;
}

// Starting a conversation that has all of its answers but the last: the history is decoded, the template walked, the
// walk's records converted to rows. Beside it the decoding of the history alone. Freeing is included.

#include "Benchmarks/AnsweredTemplate.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Services/Bot/DefaultBotEngine.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Platform/Foundation/FatalError.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kestrom::benchmarks {
namespace {

using foundation::JSONDocument;
using foundation::URL;
using models::AnswersHistoryResponse;
using models::BotAPIAnswerDTO;
using services::DefaultBotEngine;

constexpr const char* kCase = R"({"_id":"c1","property":{"city":"Burlington","streetAddress1":"12 Maple Street"}})";

URL documentsDirectory() {
  return URL::fromFilePath("/documents");
}

/// The answers as a server sends them.
std::string historyOf(const tests::Answers& answers) {
  AnswersHistoryResponse history;
  for (const tests::Answer& answer : answers) {
    const auto& [key, value] = answer.answers.front();
    const std::string& text = std::get<models::ConversationDTO::AnswerDTO::Value::String>(value.form).text;
    BotAPIAnswerDTO& sent = history.answers.emplace_back();
    sent.value.form = text;
    sent.keyValue.form = models::KeyValue{key, text};
    sent.iterationId = answer.iterationId;
    sent.messageId = answer.messageId;
    sent.moduleId = answer.moduleId;
    sent.type = "text";
    sent.locationType = answer.locationType;
    sent.context = "cv_utilities.na.skip_cv";
    sent.answeredAt = foundation::Date::fromSecondsSince1970(answer.timestamp / 1000);
  }
  std::string text = foundation::encodeJSON(history, foundation::DateStrategy::iso8601);
  // A server tells fractions of seconds, which the kit does not write.
  constexpr std::string_view kEndOfDate = "Z\"}";
  for (auto at = text.find(kEndOfDate); at != std::string::npos; at = text.find(kEndOfDate, at + 8)) {
    text.insert(at, ".125");
  }
  return text;
}

std::vector<BotAPIAnswerDTO> decoded(const std::string& history) {
  auto response =
      foundation::decodeJSON<AnswersHistoryResponse>(history, services::answersDecoder(documentsDirectory()));
  if (!response) foundation::fatalError(response.error().description);
  return std::move(response->answers);
}

/// Decodes the history for each who asks.
class DecodingAnswerService final : public services::AnswerService {
 public:
  explicit DecodingAnswerService(std::string history) : _history(std::move(history)) {}

  reactive::Publisher<bool, services::AnyError> submit(const models::BotAnswer&,
                                                       const models::KestromObjectDetails&) override {
    return reactive::just<services::AnyError>(true);
  }
  reactive::Publisher<std::vector<BotAPIAnswerDTO>, reactive::Never> answersHistory(
      const models::KestromObjectDetails&) override {
    return reactive::deferred([this] { return reactive::handedOver(decoded(_history)); });
  }
  reactive::Publisher<std::vector<models::BotAnswer>, services::DatabaseError> unsyncedAnswers(
      const models::KestromObjectDetails&) override {
    return reactive::empty<std::vector<models::BotAnswer>, services::DatabaseError>();
  }
  void clearCachedAnswers(const models::KestromObjectDetails&) override {}

 private:
  std::string _history;
};

/// What both variants hold, so that they find the same heap.
struct Prepared {
  explicit Prepared(std::size_t questions) {
    AnsweredTemplate made;
    made.house = "the house in {{case.property.city}}";
    made.addTypicalModules(questions);
    history = historyOf(made.answers);
    answerCount = made.answers.size();

    const auto json = std::make_shared<const JSONDocument>(JSONDocument::parse(kCase).value());
    models::KestromObjectDetails details;
    details.bot = std::make_shared<const models::BotTemplate>(models::BotTemplate{std::move(made.modules)});
    details.rawJSON = json;
    engine = std::make_unique<DefaultBotEngine>(DefaultBotEngine::Parts{
        .kestromObject = std::move(details),
        .chatbot = std::make_shared<services::NativeBotEngine>([this] { return clock.now(); }),
        .answerService = std::make_shared<DecodingAnswerService>(history),
        .handlebarParser = services::HandleBarParser(json),
        .imageCodec = std::make_shared<imaging::NoImageCodec>(),
        .documentsDirectory = documentsDirectory(),
        .clock = clock,
    });
  }
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;

  foundation::SystemClock clock;
  std::string history;
  std::size_t answerCount = 0;
  std::unique_ptr<DefaultBotEngine> engine;
};

void kestrom(benchmark::State& state) {
  const Prepared prepared(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    services::BotEngine::Result result;
    const auto subscription = prepared.engine->start().sink(
        [](auto&&) {}, [&result](services::BotEngine::Result&& started) { result = std::move(started); });
    // Two bubbles for each answer, and the question that is pending.
    if (result.conversation.messages.size() != 2 * prepared.answerCount + 1) {
      state.SkipWithError("the conversation did not come to its last question");
    }
    benchmark::DoNotOptimize(result);
  }
}

void decodingAlone(benchmark::State& state) {
  const Prepared prepared(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(decoded(prepared.history));
}

BENCHMARK(kestrom)->Name("start/kestrom")->RangeMultiplier(10)->Range(100, 10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(decodingAlone)
    ->Name("start/decoding the history")
    ->RangeMultiplier(10)
    ->Range(100, 10'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrom::benchmarks

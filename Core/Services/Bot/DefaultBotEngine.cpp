#include "Core/Services/Bot/DefaultBotEngine.hpp"

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Services/Bot/ConversationConversion.hpp"
#include "Core/Services/Bot/SharedListFormatter.hpp"
#include "Platform/Foundation/Calendar.hpp"
#include "Platform/Foundation/UUID.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <algorithm>
#include <ranges>
#include <utility>
#include <vector>

namespace kestrom::services {

using models::BotAnswer;
using models::BotAPIAnswerDTO;
using models::NativeBotEngineAnswerDTO;
using reactive::Publisher;

namespace {

ConversationConversion makeConversion(const DefaultBotEngine::Parts& parts) {
  return ConversationConversion({
      .handlebarParser = parts.handlebarParser,
      .listFormatter = sharedListFormatter(),
      .imageCodec = parts.imageCodec,
      .makeIdentifier = foundation::makeUUIDString,
      .presentYear = [&clock = parts.clock] { return foundation::calendarYear(clock.now()); },
  });
}

bool answersTheSame(const NativeBotEngineAnswerDTO& a, const NativeBotEngineAnswerDTO& b) {
  return a.messageId == b.messageId && a.moduleId == b.moduleId && a.iterationId == b.iterationId;
}

}  // namespace

/// The state of the conversation, which a publisher of the engine may need beyond it.
class DefaultBotEngine::Session {
 public:
  explicit Session(Parts given) : parts(std::move(given)), _conversion(makeConversion(parts)) {}

  void replaceHistory(const std::vector<BotAPIAnswerDTO>& answers) {
    _history.clear();
    _history.reserve(answers.size());
    for (const BotAPIAnswerDTO& answer : answers) {
      _history.push_back(models::engineAnswer(answer, parts.documentsDirectory));
    }
  }

  void take(const BotAnswer& answer, bool isEdit) {
    NativeBotEngineAnswerDTO taken = models::engineAnswer(answer, *parts.imageCodec);
    if (isEdit) {
      const auto newestFirst = std::views::reverse(_history);
      const auto earlier = std::ranges::find_if(
          newestFirst, [&](const NativeBotEngineAnswerDTO& each) { return answersTheSame(each, taken); });
      if (earlier != newestFirst.end()) {
        *earlier = std::move(taken);
        return;
      }
    }
    _history.push_back(std::move(taken));
  }

  Result result() const {
    const auto walked = parts.chatbot->conversation(_history, parts.kestromObject.bot->sequence);
    return {walked.progress.isFinished, _conversion.convert(walked)};
  }

  const Parts parts;

 private:
  ConversationConversion _conversion;
  /// In the order of submission.
  std::vector<NativeBotEngineAnswerDTO> _history;
};

DefaultBotEngine::DefaultBotEngine(Parts parts) : _session(std::make_shared<Session>(std::move(parts))) {}

Publisher<BotEngine::Result, AnyError> DefaultBotEngine::start() {
  return _session->parts.answerService->answersHistory(_session->parts.kestromObject)
      .map([session = _session](std::vector<BotAPIAnswerDTO>&& answers) {
        session->replaceHistory(answers);
        return session->result();
      })
      .setFailureType<AnyError>();
}

Publisher<BotEngine::Result, AnyError> DefaultBotEngine::submit(Submission submission) {
  const auto& [answer, shouldSubmit, isEdit] = submission;
  _session->take(answer, isEdit);
  if (shouldSubmit) {
    const Parts& parts = _session->parts;
    // Its failures are the answer service's affair, which keeps what could not be delivered.
    _cancellables.store(parts.answerService->submit(answer, parts.kestromObject)
                            .sink([](reactive::Completion<AnyError>&&) {}, [](bool) {}));
  }
  return reactive::just<AnyError>(_session->result());
}

}  // namespace kestrom::services

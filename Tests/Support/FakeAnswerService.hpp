#pragma once

#include "Core/Services/Bot/AnswerService.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Platform/Reactive/Subjects.hpp"

#include <string>
#include <utility>
#include <vector>

namespace kestrom::tests {

/// Keeps what it is handed and tells the history that it is given. Outlives its publishers.
class FakeAnswerService final : public services::AnswerService {
 public:
  struct Submitted {
    std::string kestromId;
    models::BotAnswer answer;
  };

  reactive::Publisher<bool, services::AnyError> submit(const models::BotAnswer& answer,
                                                       const models::KestromObjectDetails& kestrom) override {
    return reactive::deferred([this, submission = Submitted{kestrom.id, answer}] {
      submitted.push_back(submission);
      return outcomes.publisher().handleEvents({.onCancel = [this] { ++cancelled; }});
    });
  }
  reactive::Publisher<std::vector<models::BotAPIAnswerDTO>, reactive::Never> answersHistory(
      const models::KestromObjectDetails&) override {
    return reactive::deferred([this] { return reactive::just(history); });
  }
  reactive::Publisher<std::vector<models::BotAnswer>, services::DatabaseError> unsyncedAnswers(
      const models::KestromObjectDetails&) override {
    return reactive::just<services::DatabaseError>(std::vector<models::BotAnswer>());
  }
  void clearCachedAnswers(const models::KestromObjectDetails& kestrom) override {
    cleared.push_back(kestrom.organizationId + "/" + kestrom.id);
  }

  std::vector<models::BotAPIAnswerDTO> history;
  /// Those that somebody subscribed to.
  std::vector<Submitted> submitted;
  /// Of those, the ones that were dropped before their outcome.
  int cancelled = 0;
  /// The outcome of all submissions that wait for theirs.
  reactive::PassthroughSubject<bool, services::AnyError> outcomes;
  /// As "organization/case".
  std::vector<std::string> cleared;
};

}  // namespace kestrom::tests

#pragma once

#include "Kestrom/Platform/URLSession.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/WireAnswers.hpp"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::tests {

/// A session with a server behind it that keeps the answers of one case, in virtual time and with faults by chance:
/// refusals, requests that never come, answers that do not come back though the request did. What is under way when its
/// session goes, as when a process dies, does not come any more.
class VirtualAnswerServer {
 public:
  using Answer = models::BotAPIAnswerDTO;

  explicit VirtualAnswerServer(reactive::Scheduler& time, std::uint64_t seed)
      : _state(std::make_shared<State>(time, seed)) {}

  /// Of a hundred requests so many go wrong.
  void setFaultPercent(int percent) { _state->faultPercent = percent; }

  std::shared_ptr<networking::URLSession> makeSession() { return std::make_shared<Session>(_state); }

  /// Every answer as often as it came, in the order of its coming.
  const std::vector<Answer>& arrivals() const { return _state->arrivals; }

  /// The last that came for each question.
  std::map<std::string, Answer> record() const {
    std::map<std::string, Answer> record;
    for (const Answer& answer : arrivals()) record.insert_or_assign(questionOf(answer), answer);
    return record;
  }

  static std::string questionOf(const Answer& answer) {
    return answer.messageId + "/" + answer.moduleId + "/" + std::to_string(answer.iterationId);
  }

 private:
  enum class Fault : std::uint8_t { none, refused, lostOnTheWay, answerLost };

  struct State {
    State(reactive::Scheduler& scheduler, std::uint64_t seed) : time(scheduler), random(seed) {}

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); }
    Fault chance() { return below(100) < faultPercent ? static_cast<Fault>(1 + below(3)) : Fault::none; }
    reactive::Duration wait() { return std::chrono::milliseconds(below(2'000)); }

    reactive::Scheduler& time;
    std::mt19937_64 random;
    int faultPercent = 0;
    std::vector<Answer> arrivals;
    /// By question.
    std::map<std::string, reactive::TimePoint> lastArrival;
  };

  class Session final : public networking::URLSession {
   public:
    explicit Session(std::shared_ptr<State> state) : _state(std::move(state)) {}

    reactive::AnyCancellable dataTask(networking::URLRequest request, DataCompletion completion) override {
      auto shared = std::make_shared<DataCompletion>(std::move(completion));
      const Fault fault = _state->chance();
      arrive(std::move(request), fault, shared);
      return reactive::AnyCancellable([shared] { *shared = nullptr; });
    }
    reactive::AnyCancellable uploadTask(networking::URLRequest, foundation::URL, DataCompletion) override { return {}; }
    reactive::AnyCancellable downloadTask(networking::URLRequest, DownloadCompletion) override { return {}; }

   private:
    using SharedCompletion = std::shared_ptr<DataCompletion>;
    using Result = std::expected<networking::DataResponse, networking::URLError>;

    void arrive(networking::URLRequest request, Fault fault, const SharedCompletion& completion) {
      const reactive::TimePoint arrival = arrivalOf(request);
      _tokens.push_back(_state->time.scheduleAfter(arrival - _state->time.now(), [this, request = std::move(request),
                                                                                  fault, completion] {
        Result result = std::unexpected(networking::URLError{networking::URLError::Code::networkConnectionLost, ""});
        if (fault != Fault::lostOnTheWay) result = served(request, fault);
        if (fault == Fault::answerLost) {
          result = std::unexpected(networking::URLError{networking::URLError::Code::timedOut, ""});
        }
        _tokens.push_back(
            _state->time.scheduleAfter(_state->wait(), [completion, result = std::move(result)]() mutable {
              if (*completion) std::exchange(*completion, nullptr)(std::move(result));
            }));
      }));
    }

    /// Two answers of one question arrive in the order in which they were sent; all else in any order.
    reactive::TimePoint arrivalOf(const networking::URLRequest& request) const {
      const reactive::TimePoint arrival = _state->time.now() + _state->wait();
      if (request.method == "GET") return arrival;
      reactive::TimePoint& last = _state->lastArrival[questionOf(sentAnswer(request))];
      last = std::max(last, arrival);
      return last;
    }

    networking::DataResponse served(const networking::URLRequest& request, Fault fault) const {
      if (fault == Fault::refused) return response(request, 500, "no JSON");
      if (request.method == "GET") {
        std::vector<Answer> history;
        for (const auto& [question, answer] : VirtualAnswerServer(_state).record()) history.push_back(answer);
        return response(request, 200, historyBody(history));
      }
      _state->arrivals.push_back(sentAnswer(request));
      return response(request, 200, "{}");
    }

    static networking::DataResponse response(const networking::URLRequest& request, int status, std::string text) {
      return {{text.begin(), text.end()}, networking::HTTPURLResponse{request.url, status, {}}};
    }

    std::shared_ptr<State> _state;
    /// What is under way ends with the session.
    std::vector<reactive::AnyCancellable> _tokens;
  };

  explicit VirtualAnswerServer(std::shared_ptr<State> state) : _state(std::move(state)) {}

  std::shared_ptr<State> _state;
};

}  // namespace kestrom::tests

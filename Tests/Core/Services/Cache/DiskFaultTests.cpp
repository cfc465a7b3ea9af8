#include "Core/Models/AnswerConversion.hpp"
#include "Core/Services/Bot/DefaultAnswerService.hpp"
#include "Core/Services/Cache/DefaultJSONCache.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"
#include "Tests/Support/AnswerSamples.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeURLSession.hpp"
#include "Tests/Support/OutcomeNow.hpp"
#include "Tests/Support/SystemCalls.hpp"
#include "Tests/Support/WireAnswers.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using models::BotAnswer;
using models::BotAPIAnswerDTO;
using tests::chosenAnswer;
using tests::FaultySystemCalls;
using Fault = FaultySystemCalls::Fault;

/// A conversation with a server that takes some answers and refuses others, on a disk that fails.
class Conversation {
 public:
  Conversation() {
    const foundation::URL documents = directory.url("documents");
    const auto rest = std::make_shared<RESTNetworkService>(RESTNetworkService::Parts{.session = session,
                                                                                     .requestModifiers = {},
                                                                                     .errorHandlers = {},
                                                                                     .multipartFileWriter = nullptr,
                                                                                     .mainQueue = mainQueue,
                                                                                     .clock = clock});
    const auto files = std::make_shared<SystemFileManager>(std::make_shared<foundation::PosixFileManager>(
        foundation::PosixFileManager::Directories{documents, directory.url("tmp")}));
    makeService = [=, this] {
      return DefaultAnswerService(
          {rest,
           std::make_shared<DefaultJSONCache>(files, foundation::DecodingOptions{.documentsDirectory = documents},
                                              foundation::DateStrategy::secondsSinceReferenceDate),
           underWay, documents});
    };
  }

  /// Goes through the script while the n-th call fails; the number of calls.
  int run(Fault fault, int n, bool isForGood) {
    FaultySystemCalls calls(fault, n, isForGood);
    DefaultAnswerService service = makeService();
    const auto hasFailed = [&] { return n > 0 && calls.count() >= n; };
    int step = 0;
    // A question is answered twice and another three times; the newest two are under way at once.
    for (const std::string question : {"a", "b", "a", "c", "d", "e", "e", "e"}) {
      const bool hadFailed = hasFailed();
      const std::string text = "answer " + std::to_string(step);
      _handedOver[question] = text;
      _tokens.push_back(service.submit(chosenAnswer(question, text), tests::someCase())
                            .sink([](reactive::Completion<AnyError>&&) {}, [](bool) {}));
      mainQueue.runReady();
      // What could not be written has only its request, until that ends.
      const bool isWritten = !hasFailed() || (hadFailed && !isForGood);
      expectNothingLost(isWritten ? "" : question);
      // Who has neither a disk nor a server has nothing.
      const bool isRefused = step % 2 == 1 && !(isForGood && hasFailed());
      if (!isRefused) arrive();
      if (step != 6) finish(static_cast<std::size_t>(step), isRefused);
      if (step == 7) finish(6, false);
      expectNothingLost(step == 6 && !isWritten ? question : "");
      ++step;
    }
    return calls.count();
  }

  /// The next start of the process, with a sound disk: all that the server lacks waits for it.
  void expectAllToBeSent() {
    DefaultAnswerService service = makeService();
    const auto unsynced = tests::outcomeNow(service.unsyncedAnswers(tests::someCase()));
    for (const BotAnswer& kept : unsynced->value()) {
      _server[kept.messageId] = std::get<BotAnswer::Value::String>(kept.value.form).text;
    }
    EXPECT_EQ(_server, _handedOver);
  }

 private:
  /// The server takes the newest request.
  void arrive() {
    const BotAPIAnswerDTO sent = tests::sentAnswer(session->tasks.back()->request);
    _server[sent.messageId] = std::get<models::KeyValue>(sent.keyValue.form).value;
  }

  /// The server's word comes back.
  void finish(std::size_t index, bool isRefused) {
    session->finish(index, isRefused ? 500 : 200, "");
    mainQueue.runReady();
  }

  /// The newest answer of every question is in the file or on the server, but for that of one question.
  void expectNothingLost(const std::string& except) {
    std::map<std::string, std::string> kept;
    const auto list = foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(
        directory.content("documents/organization-case-answers.json"), {});
    for (const BotAPIAnswerDTO& answer : list.value_or(std::vector<BotAPIAnswerDTO>{})) {
      kept[answer.messageId] = std::get<models::KeyValue>(answer.keyValue.form).value;
    }
    for (const auto& [question, text] : _handedOver) {
      if (question == except) continue;
      EXPECT_TRUE(kept[question] == text || _server[question] == text) << question << " lost " << text;
    }
  }

  foundation::TemporaryDirectory directory;
  reactive::ManualScheduler mainQueue;
  tests::FakeClock clock;
  std::shared_ptr<tests::FakeURLSession> session = std::make_shared<tests::FakeURLSession>();
  std::shared_ptr<AnswersUnderWay> underWay = std::make_shared<AnswersUnderWay>();
  std::function<DefaultAnswerService()> makeService;
  std::map<std::string, std::string> _handedOver;
  std::map<std::string, std::string> _server;
  std::vector<reactive::AnyCancellable> _tokens;
};

TEST(DiskFaults, LoseNoAnswer) {
  for (const Fault fault : {Fault::noSpace, Fault::noPermission, Fault::shortWrite}) {
    const int count = Conversation().run(fault, 0, false);
    EXPECT_GT(count, fault == Fault::shortWrite ? 10 : 100);
    for (const bool isForGood : {false, true}) {
      for (int n = 1; n <= count; ++n) {
        SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(count) + (isForGood ? " on" : ""));
        Conversation conversation;
        conversation.run(fault, n, isForGood);
        // What a disk that writes nothing more held before may be older than what the server has.
        if (!isForGood) conversation.expectAllToBeSent();
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace kestrom::services

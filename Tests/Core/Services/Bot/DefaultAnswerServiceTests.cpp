#include "Core/Services/Bot/DefaultAnswerService.hpp"

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Services/Cache/CacheUnique.hpp"
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
#include "Tests/Support/RecordingLogSink.hpp"
#include "Tests/Support/WireAnswers.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::URL;
using models::BotAnswer;
using models::BotAPIAnswerDTO;
using networking::URLError;
using tests::chosenAnswer;
using tests::outcomeNow;
using tests::someCase;

using Answers = std::vector<BotAPIAnswerDTO>;

constexpr auto kFileName = "organization-case-answers.json";

class DefaultAnswerServiceTest : public testing::Test {
 protected:
  /// What a caller of `submit` has seen.
  struct Submit {
    std::vector<std::string> seen;
    reactive::AnyCancellable token;
  };

  DefaultAnswerServiceTest() {
    const auto rest = std::make_shared<RESTNetworkService>(RESTNetworkService::Parts{.session = session,
                                                                                     .requestModifiers = {},
                                                                                     .errorHandlers = {},
                                                                                     .multipartFileWriter = nullptr,
                                                                                     .mainQueue = mainQueue,
                                                                                     .clock = clock});
    const URL documents = directory.url("documents");
    const auto files = std::make_shared<foundation::PosixFileManager>(
        foundation::PosixFileManager::Directories{documents, directory.url("tmp")});
    cache = std::make_shared<DefaultJSONCache>(std::make_shared<SystemFileManager>(files),
                                               foundation::DecodingOptions{.documentsDirectory = documents},
                                               foundation::DateStrategy::secondsSinceReferenceDate);
    service.emplace(DefaultAnswerService::Parts{rest, cache, underWay, documents});
  }

  std::shared_ptr<Submit> submit(const BotAnswer& answer) {
    auto submit = std::make_shared<Submit>();
    submit->token = service->submit(answer, someCase())
                        .sink(
                            [seen = submit.get()](reactive::Completion<AnyError>&& completion) {
                              if (completion.isFailure()) seen->seen.push_back(completion.failure().description());
                            },
                            [seen = submit.get(), this, key = keyOf(answer)](bool delivered) {
                              const bool isUnderWay =
                                  underWay->contains(CacheFilename::answers("organization", "case"), key);
                              seen->seen.push_back(std::string(delivered ? "delivered" : "kept") +
                                                   (isUnderWay ? ", under way" : ""));
                            });
    return submit;
  }

  static std::string keyOf(const BotAnswer& answer) { return cacheKey(models::apiAnswer(answer, std::nullopt)); }

  void answerNext(int status, std::string_view body = "{}") {
    session->finish(_answered++, status, body);
    mainQueue.runReady();
  }

  /// The file, an entry a line: the message, its text, and whether it is delivered.
  std::vector<std::string> file() {
    std::vector<std::string> lines;
    const auto answers = outcomeNow(cache->load<BotAPIAnswerDTO>(CacheFilename::answers("organization", "case")));
    for (const BotAPIAnswerDTO& answer : answers->value_or(Answers{})) {
      const auto* keyed = std::get_if<models::KeyValue>(&answer.keyValue.form);
      lines.push_back(answer.messageId + " " + (keyed ? keyed->value : "") +
                      (answer.wasSynced ? (*answer.wasSynced ? " delivered" : " kept") : " unmarked"));
    }
    return lines;
  }

  /// Makes the file impossible to read and to write, or lets it be what it was.
  void blockFile(bool isBlocked) {
    const std::string path = directory.path(std::string("documents/") + kFileName);
    if (isBlocked) {
      if (std::filesystem::exists(path)) std::filesystem::rename(path, path + ".aside");
      std::filesystem::create_directories(path + "/inside");
    } else {
      std::filesystem::remove_all(path);
      if (std::filesystem::exists(path + ".aside")) std::filesystem::rename(path + ".aside", path);
    }
  }

  foundation::TemporaryDirectory directory;
  reactive::ManualScheduler mainQueue;
  tests::FakeClock clock;
  std::shared_ptr<tests::FakeURLSession> session = std::make_shared<tests::FakeURLSession>();
  std::shared_ptr<AnswersUnderWay> underWay = std::make_shared<AnswersUnderWay>();
  std::shared_ptr<JSONCache> cache;
  std::optional<DefaultAnswerService> service;

 private:
  std::size_t _answered = 0;
};

using Seen = std::vector<std::string>;

TEST_F(DefaultAnswerServiceTest, KeepsAnAnswerBeforeItsRequestAndMarksItAfterwards) {
  const auto first = submit(chosenAnswer("m1", "one"));
  mainQueue.runReady();
  EXPECT_EQ(file(), Seen{"m1 one kept"});
  ASSERT_EQ(session->tasks.size(), 1U);
  const auto body = std::string(foundation::textOf(session->tasks[0]->request.body.value()));
  EXPECT_EQ(body.find("wasSynced"), std::string::npos) << body;
  EXPECT_TRUE(first->seen.empty());

  answerNext(200, "no JSON");
  EXPECT_EQ(first->seen, Seen{"delivered"});
  EXPECT_EQ(file(), Seen{"m1 one delivered"});
}

TEST_F(DefaultAnswerServiceTest, KeepsForLaterWhateverGoesWrong) {
  const tests::RecordedLog log;
  const auto refused = submit(chosenAnswer("m1", "one"));
  const auto failed = submit(chosenAnswer("m2", "two"));
  answerNext(500);
  session->fail(1, URLError::Code::notConnectedToInternet);
  mainQueue.runReady();
  EXPECT_EQ(refused->seen, Seen{"kept"});
  EXPECT_EQ(failed->seen, Seen{"kept"});
  EXPECT_EQ(file(), (Seen{"m1 one kept", "m2 two kept"}));

  int told = 0;
  for (const std::string& line : log.lines()) {
    EXPECT_EQ(line.find("one"), std::string::npos) << line;
    told += line.contains("Unable to submit an answer, saving it to a cache") ? 1 : 0;
    told += line.contains("submit(answer:kestrom:)") ? 10 : 0;
  }
  EXPECT_EQ(told, 22);

  const auto again = submit(chosenAnswer("m1", "other"));
  EXPECT_EQ(file(), (Seen{"m1 other kept", "m2 two kept"}));
  session->finish(2, 200, "");
  mainQueue.runReady();
  EXPECT_EQ(again->seen, Seen{"delivered"});
  EXPECT_EQ(file(), (Seen{"m1 other delivered", "m2 two kept"}));

  const auto unsynced = outcomeNow(service->unsyncedAnswers(someCase())).value().value();
  ASSERT_EQ(unsynced.size(), 1U);
  EXPECT_EQ(unsynced[0].messageId, "m2");
  EXPECT_EQ(unsynced[0].value, BotAnswer::Value{BotAnswer::Value::String("two", "key")});
}

TEST_F(DefaultAnswerServiceTest, TellsOnlyThatAnAnswerCouldNotBeKept) {
  ASSERT_TRUE(outcomeNow(cache->upsert(models::apiAnswer(chosenAnswer("m0", "zero"), true),
                                       CacheFilename::answers("organization", "case"))));
  blockFile(true);
  const auto kept = submit(chosenAnswer("m1", "one"));
  ASSERT_EQ(session->tasks.size(), 1U) << "the request goes out even if nothing can be written";
  blockFile(false);
  answerNext(500);
  EXPECT_EQ(kept->seen, Seen{"kept"});
  EXPECT_EQ(file(), (Seen{"m0 zero delivered", "m1 one kept"}));

  // The server has it, the mark cannot be made: it counts as not delivered and comes again.
  const auto unmarked = submit(chosenAnswer("m2", "two"));
  blockFile(true);
  answerNext(200);
  EXPECT_EQ(unmarked->seen, Seen{"DatabaseError.unknown"});
  blockFile(false);
  EXPECT_EQ(file(), (Seen{"m0 zero delivered", "m1 one kept", "m2 two kept"}));

  blockFile(true);
  const auto lost = submit(chosenAnswer("m3", "three"));
  answerNext(500);
  EXPECT_EQ(lost->seen, Seen{"DatabaseError.unknown"});
  EXPECT_FALSE(underWay->contains(CacheFilename::answers("organization", "case"), "m3module0"));
}

TEST_F(DefaultAnswerServiceTest, LeavesAnEntryToTheNewestAnswer) {
  for (const auto& [olderStatus, newerStatus] : {std::pair{200, 500}, {500, 200}, {200, 200}, {500, 500}}) {
    for (const bool isOlderFirst : {true, false}) {
      cache->remove(CacheFilename::answers("organization", "case"));
      const std::size_t at = session->tasks.size();
      const auto older = submit(chosenAnswer("m", "older"));
      const auto newer = submit(chosenAnswer("m", "newer"));
      const auto finish = [&](bool isOlder) {
        session->finish(at + (isOlder ? 0 : 1), isOlder ? olderStatus : newerStatus, "");
        mainQueue.runReady();
      };
      const std::string outcome = newerStatus == 200 ? " delivered" : " kept";
      finish(isOlderFirst);
      EXPECT_EQ(file(), Seen{"m newer" + (isOlderFirst ? " kept" : outcome)});
      EXPECT_TRUE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
      finish(!isOlderFirst);
      EXPECT_EQ(file(), Seen{"m newer" + outcome}) << olderStatus << newerStatus << isOlderFirst;
      EXPECT_FALSE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
      EXPECT_TRUE(older->seen[0].starts_with(olderStatus == 200 ? "delivered" : "kept"));
    }
  }
}

TEST_F(DefaultAnswerServiceTest, LeavesWhatItWasNotToldTheEndOf) {
  auto cancelled = submit(chosenAnswer("m", "one"));
  EXPECT_TRUE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
  EXPECT_FALSE(underWay->contains(CacheFilename::answers("organization", "other"), "mmodule0"));
  cancelled = nullptr;
  EXPECT_FALSE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
  EXPECT_EQ(file(), Seen{"m one kept"});

  // The publisher may be held by others, on any thread.
  const auto publisher = service->submit(chosenAnswer("m", "two"), someCase());
  EXPECT_TRUE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
  publisher.sink([](auto&&) {}, [](bool) {}).cancel();
  EXPECT_FALSE(underWay->contains(CacheFilename::answers("organization", "case"), "mmodule0"));
}

TEST_F(DefaultAnswerServiceTest, CountsFilesOfTheDeviceAsNotDelivered) {
  using Value = BotAnswer::Value;
  using Type = BotAnswer::BotAnswerType;
  const URL local = directory.url("documents/a.jpg");
  const URL remote = URL::parse("https://media.example/a.jpg").value();
  struct Case {
    Value value;
    Type type;
    bool isDelivered;
  };
  const std::vector<Case> cases{
      {{Value::Url{local, "k", true}}, Type::url, false},
      {{Value::Url{remote, "k", false}}, Type::url, true},
      {{Value::MediaBundle{local, remote, true}}, Type::mediaBundle, false},
      {{Value::MediaBundle{remote, local, true}}, Type::mediaBundle, false},
      {{Value::MediaBundle{remote, remote, false}}, Type::mediaBundle, true},
      {{Value::MediaBundle{local, std::nullopt, true}}, Type::mediaBundle, true},
      {{Value::String{local.absoluteString(), "k"}}, Type::regular, true},
  };
  for (std::size_t index = 0; index < cases.size(); ++index) {
    cache->remove(CacheFilename::answers("organization", "case"));
    BotAnswer answer = chosenAnswer("m", "");
    answer.value = cases[index].value;
    answer.type = cases[index].type;
    const auto submitted = submit(answer);
    answerNext(200);
    EXPECT_EQ(submitted->seen, Seen{"delivered"});
    EXPECT_TRUE(file()[0].ends_with(cases[index].isDelivered ? " delivered" : " kept")) << index;
  }
}

TEST_F(DefaultAnswerServiceTest, BelievesTheListThatKnowsMore) {
  struct Case {
    std::vector<double> server;
    std::vector<double> device;
    bool isServers;
  };
  const std::vector<Case> cases{
      {{}, {}, false},
      {{1}, {}, true},
      {{}, {1}, false},
      {{10, 2, 3}, {1, 10, 3, 4}, false},
      {{1, 2, 3, 4, 10}, {10, 2, 3, 4}, true},
      {{10, 2, 3, 4}, {1, 2, 3, 10}, false},
      {{11}, {1, 2, 3, 4, 5, 6, 7, 8, 10}, true},
      {{9, 9, 9}, {10}, true},
      {{10, 10}, {11, 1, 1}, false},
  };
  const CacheFilename kept = CacheFilename::answers("organization", "case");
  for (std::size_t index = 0; index < cases.size(); ++index) {
    const auto list = [](const std::string& name, const std::vector<double>& moments) {
      Answers answers;
      for (const double moment : moments) {
        answers.push_back(models::apiAnswer(chosenAnswer(name + std::to_string(answers.size()), "t", 0, moment), true));
      }
      return answers;
    };
    const Answers server = list("server", cases[index].server);
    const Answers device = list("device", cases[index].device);
    cache->remove(kept);
    if (!device.empty()) {
      ASSERT_TRUE(outcomeNow(cache->save(device, kept)));
    }
    std::optional<Answers> history;
    const auto token = service->answersHistory(someCase()).sink([&](Answers&& answers) { history = answers; });
    mainQueue.runReady();
    EXPECT_FALSE(history) << "the server is not heard yet";
    answerNext(200, tests::historyBody(server));
    ASSERT_TRUE(history);
    EXPECT_TRUE(*history == (cases[index].isServers ? server : device)) << index;
  }
}

TEST_F(DefaultAnswerServiceTest, AsksAnewAtEachSubscription) {
  const auto history = service->answersHistory(someCase());
  for (const std::size_t count : {1U, 2U}) {
    const auto submitted = submit(chosenAnswer("m" + std::to_string(count), "t"));
    answerNext(500);
    std::optional<Answers> answers;
    const auto token = history.sink([&](Answers&& found) { answers = found; });
    answerNext(500);
    ASSERT_TRUE(answers);
    EXPECT_EQ(answers->size(), count);
  }
}

TEST_F(DefaultAnswerServiceTest, TakesWhatIsThereWhenTheServerFails) {
  for (const bool isOnDevice : {false, true}) {
    for (const auto& [status, body] : {std::pair{500, "{}"}, {200, "{}"}, {200, "[]"}, {200, "{\"answers\":[{}]}"}}) {
      if (isOnDevice) {
        ASSERT_TRUE(outcomeNow(cache->upsert(models::apiAnswer(chosenAnswer("m", "t"), false),
                                             CacheFilename::answers("organization", "case"))));
      }
      std::optional<Answers> history;
      const auto token = service->answersHistory(someCase()).sink([&](Answers&& answers) { history = answers; });
      answerNext(status, body);
      ASSERT_TRUE(history);
      EXPECT_EQ(history->size(), isOnDevice ? 1U : 0U) << body;
    }
  }
  service->clearCachedAnswers(someCase());
  EXPECT_TRUE(file().empty());
  EXPECT_TRUE(outcomeNow(service->unsyncedAnswers(someCase())).value().value().empty());
}

}  // namespace
}  // namespace kestrom::services

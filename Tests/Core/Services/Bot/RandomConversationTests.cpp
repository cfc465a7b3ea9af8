#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Services/Bot/DefaultAnswerService.hpp"
#include "Core/Services/Bot/DefaultBotEngine.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Core/Services/Cache/CacheUnique.hpp"
#include "Core/Services/Cache/DefaultJSONCache.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Platform/Imaging/ImageCodec.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/AnswerSamples.hpp"
#include "Tests/Support/ChatPerson.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/MemoryFileManager.hpp"
#include "Tests/Support/OutcomeNow.hpp"
#include "Tests/Support/VirtualAnswerServer.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using models::BotAnswer;
using models::BotAPIAnswerDTO;

/// The example that comes with the kit, with all kinds of questions.
const models::KestromObjectDetails& exampleCase() {
  static const models::KestromObjectDetails kCase = [] {
    std::ifstream file(KESTROM_SOURCE_DIR "/examples/home-inspection.json", std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    auto kestrom = tests::someCase();
    kestrom.bot = std::make_shared<const models::BotTemplate>(
        foundation::decodeJSON<models::BotTemplate>(text, defaultDecoder()).value());
    return kestrom;
  }();
  return kCase;
}

/// One run of the host's process, from start to kill. What it had under way dies with it.
class Process {
 public:
  Process(tests::VirtualAnswerServer& server, std::shared_ptr<foundation::FileManager> files,
          reactive::ManualScheduler& mainQueue, const foundation::Clock& clock) {
    const foundation::URL documents = files->documentsDirectory();
    answerService = std::make_shared<DefaultAnswerService>(DefaultAnswerService::Parts{
        .restService = std::make_shared<RESTNetworkService>(RESTNetworkService::Parts{.session = server.makeSession(),
                                                                                      .requestModifiers = {},
                                                                                      .errorHandlers = {},
                                                                                      .multipartFileWriter = nullptr,
                                                                                      .mainQueue = mainQueue,
                                                                                      .clock = clock}),
        .cache = std::make_shared<DefaultJSONCache>(std::make_shared<SystemFileManager>(std::move(files)),
                                                    foundation::DecodingOptions{.documentsDirectory = documents},
                                                    foundation::DateStrategy::secondsSinceReferenceDate),
        .underWay = underWay,
        .documentsDirectory = documents,
    });
    engine = std::make_unique<DefaultBotEngine>(DefaultBotEngine::Parts{
        .kestromObject = exampleCase(),
        .chatbot = std::make_shared<NativeBotEngine>([&clock] { return clock.now(); }),
        .answerService = answerService,
        .handlebarParser = HandleBarParser(exampleCase().rawJSON),
        .imageCodec = std::make_shared<imaging::NoImageCodec>(),
        .documentsDirectory = documents,
        .clock = clock,
    });
    tokens.push_back(engine->start().sink([](auto&&) {}, [this](BotEngine::Result&& started) { result = started; }));
  }

  void submit(const BotAnswer& answer, bool isEdit) {
    tokens.push_back(engine->submit({answer, true, isEdit})
                         .sink([](auto&&) {}, [this](BotEngine::Result&& walked) { result = walked; }));
  }

  /// Sends what is kept and not under way; how much that is.
  std::size_t synchronize() {
    std::size_t count = 0;
    const auto unsynced = tests::outcomeNow(answerService->unsyncedAnswers(exampleCase()));
    for (const BotAnswer& answer : unsynced->value()) {
      const auto file = CacheFilename::answers(exampleCase().organizationId, exampleCase().id);
      if (underWay->contains(file, cacheKey(models::apiAnswer(answer, std::nullopt)))) continue;
      ++count;
      tokens.push_back(answerService->submit(answer, exampleCase()).sink([](auto&&) {}, [](bool) {}));
    }
    return count;
  }

  std::shared_ptr<AnswersUnderWay> underWay = std::make_shared<AnswersUnderWay>();
  std::shared_ptr<DefaultAnswerService> answerService;
  std::unique_ptr<DefaultBotEngine> engine;
  /// What the chat shows; absent until the history is there.
  std::optional<BotEngine::Result> result;
  std::vector<reactive::AnyCancellable> tokens;
};

class RandomConversation {
 public:
  explicit RandomConversation(std::uint64_t seed) : random(seed), server(mainQueue, seed) {}

  void run() {
    process = makeProcess();
    server.setFaultPercent(static_cast<int>(below(60)));
    const std::size_t steps = 10 + below(25);
    for (std::size_t step = 0; step < steps; ++step) {
      if (below(8) != 0) pass(std::chrono::milliseconds(below(3'000)));
      if (!process->result) continue;
      switch (below(10)) {
        case 0:
          restart();
          break;
        case 1:
          process->synchronize();
          break;
        case 2:
          edit();
          break;
        default:
          answer();
      }
    }
    server.setFaultPercent(0);
    if (below(2) == 0) restart();
    // What is under way may still fail; after that the way is free.
    pass(std::chrono::seconds(10));
    process->synchronize();
    pass(std::chrono::seconds(10));
    EXPECT_EQ(process->synchronize(), 0U);
    expectAllOnTheServer();
  }

 private:
  std::size_t below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random); }

  std::unique_ptr<Process> makeProcess() { return std::make_unique<Process>(server, files, mainQueue, clock); }

  void pass(reactive::Duration duration) {
    mainQueue.advance(duration);
    clock.advance(std::chrono::duration<double>(duration).count());
  }

  void answer() {
    auto answer =
        tests::answerOfAPerson(process->result->conversation, [this](std::size_t bound) { return below(bound); });
    if (answer) handOver(std::move(*answer), false);
  }

  void edit() {
    if (handedOver.empty()) return;
    auto earlier = std::next(handedOver.begin(), static_cast<std::ptrdiff_t>(below(handedOver.size())))->second;
    auto* typed = std::get_if<BotAnswer::Value::String>(&earlier.value.form);
    if (!typed || earlier.type != BotAnswer::BotAnswerType::regular) return;
    typed->text += "!";
    handOver(std::move(earlier), true);
  }

  void handOver(BotAnswer answer, bool isEdit) {
    pass(std::chrono::milliseconds(1 + below(20)));
    answer.timestamp = clock.now();
    handedOver[cacheKey(models::apiAnswer(answer, std::nullopt))] = answer;
    process->submit(answer, isEdit);
  }

  /// The process is killed, and its successor goes on where it was.
  void restart() {
    const auto before = process->result ? std::optional(process->result->conversation) : std::nullopt;
    process = nullptr;
    process = makeProcess();
    pass(std::chrono::seconds(10));
    ASSERT_TRUE(process->result);
    if (before) {
      EXPECT_EQ(process->result->conversation.messages.size(), before->messages.size());
      EXPECT_EQ(process->result->conversation.progress, before->progress);
    }
  }

  void expectAllOnTheServer() {
    const auto record = server.record();
    EXPECT_EQ(record.size(), handedOver.size());
    for (const auto& [key, answer] : handedOver) {
      const BotAPIAnswerDTO wanted = models::apiAnswer(answer, std::nullopt);
      const auto arrived = record.find(tests::VirtualAnswerServer::questionOf(wanted));
      ASSERT_TRUE(arrived != record.end()) << key;
      EXPECT_TRUE(arrived->second.value == wanted.value && arrived->second.keyValue == wanted.keyValue) << key;
      EXPECT_EQ(arrived->second.type, wanted.type);
      EXPECT_EQ(arrived->second.context, wanted.context);
      EXPECT_EQ(arrived->second.locationType, wanted.locationType);
    }
  }

  std::mt19937_64 random;
  reactive::ManualScheduler mainQueue;
  tests::FakeClock clock;
  tests::VirtualAnswerServer server;
  std::shared_ptr<tests::MemoryFileManager> files = std::make_shared<tests::MemoryFileManager>();
  std::unique_ptr<Process> process;
  /// The newest answer to each question.
  std::map<std::string, BotAnswer> handedOver;
};

TEST(RandomConversations, EndWithEveryAnswerOnTheServer) {
  for (std::uint64_t seed = 1; seed <= 1'000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomConversation(seed).run();
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace kestrom::services

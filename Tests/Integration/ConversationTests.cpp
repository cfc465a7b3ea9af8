// A whole inspection against a server of its own, by a host that is killed again and again while the server refuses,
// drops, dies and comes back.

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Services/Bot/DefaultBotEngine.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Platform/Imaging/ImageCodec.hpp"
#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"
#include "Tests/Support/AnswerSamples.hpp"
#include "Tests/Support/ChatPerson.hpp"
#include "Tests/Support/ChildProcess.hpp"
#include "Tests/Support/FakeAnswerService.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace kestrom {
namespace {

using models::BotAPIAnswerDTO;
using tests::SandboxProcess;

std::string contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// What somebody who follows the script answers, with nobody between him and the walk.
std::vector<BotAPIAnswerDTO> script() {
  auto kestrom = tests::someCase();
  kestrom.bot = std::make_shared<const models::BotTemplate>(
      foundation::decodeJSON<models::BotTemplate>(contentOf(KESTROM_SOURCE_DIR "/examples/home-inspection.json"), {})
          .value());
  kestrom.rawJSON = std::make_shared<const foundation::JSONDocument>(
      foundation::JSONDocument::parse(contentOf(KESTROM_SOURCE_DIR "/examples/home-inspection.case.json")).value());
  const foundation::SystemClock clock;
  const auto service = std::make_shared<tests::FakeAnswerService>();
  services::DefaultBotEngine engine({
      .kestromObject = kestrom,
      .chatbot = std::make_shared<services::NativeBotEngine>([&clock] { return clock.now(); }),
      .answerService = service,
      .handlebarParser = services::HandleBarParser(kestrom.rawJSON),
      .imageCodec = std::make_shared<imaging::NoImageCodec>(),
      .documentsDirectory = foundation::URL::fromFilePath("/documents"),
      .clock = clock,
  });
  std::vector<BotAPIAnswerDTO> answers;
  services::BotEngine::Result result;
  const auto keep = [&](services::BotEngine::Result&& walked) { result = std::move(walked); };
  const auto started = engine.start().sink([](auto&&) {}, keep);
  while (const auto answer = tests::scriptedAnswer(result.conversation)) {
    answers.push_back(models::apiAnswer(*answer, std::nullopt));
    const auto submitted = engine.submit({*answer, false, false}).sink([](auto&&) {}, keep);
  }
  EXPECT_TRUE(result.isCompleted);
  return answers;
}

class ConversationIntegration : public testing::Test {
 protected:
  using Ended = tests::EndedProcess;

  /// Runs the host.
  Ended run(std::vector<std::string> command, const std::function<void(const std::string&)>& atLine = {},
            const char* documents = "documents") {
    std::vector<std::string> arguments{KESTROM_CONVERSATION_PROGRAM, std::to_string(server.port()),
                                       server.certificateAuthority(), directory.path(documents)};
    arguments.insert(arguments.end(), command.begin(), command.end());
    return tests::runProcess(std::move(arguments), atLine);
  }

  /// What the server has, read by a device that has nothing.
  std::vector<BotAPIAnswerDTO> record() {
    const Ended ended = run({"history"}, {}, "empty");
    EXPECT_EQ(ended.lines.size(), 1U);
    auto answers = foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(ended.lines.at(0), {});
    return answers.value_or(std::vector<BotAPIAnswerDTO>{});
  }

  foundation::TemporaryDirectory directory;
  SandboxProcess server{R"([
    {"endpoint": "mobileLogin", "call": 1, "drop": "afterBody"},
    {"endpoint": "getBot", "call": 1, "status": 503},
    {"endpoint": "submitAnswer", "call": [2, 5, 9, 14], "status": 500},
    {"endpoint": "submitAnswer", "call": [3, 7], "drop": "afterBody"},
    {"endpoint": "submitAnswer", "call": [6, 11], "drop": "afterResponse"},
    {"endpoint": "submitAnswer", "call": [8, 12], "garbage": true}
  ])"};
};

using Key = std::tuple<std::string, std::string, std::int64_t>;

Key keyOf(const BotAPIAnswerDTO& answer) {
  return {answer.moduleId, answer.messageId, answer.iterationId};
}

TEST_F(ConversationIntegration, LeavesTheScriptOnTheServer) {
  EXPECT_TRUE(run({"answer", "20"}).wasKilled());
  server.kill();
  server.restart(R"([
    {"endpoint": "getHistory", "call": 1, "status": 500},
    {"endpoint": "submitAnswer", "call": [1, 2, 3, 4, 5, 6, 7, 8], "drop": "duringResponse"},
    {"endpoint": "submitAnswer", "call": [10, 11, 12], "status": 401, "body": {"statusCode": 401}}
  ])");
  EXPECT_TRUE(run({"answer", "20"}).wasKilled());

  server.restart();
  const auto stopAtTen = [this](const std::string& line) {
    if (line == "answered 10") server.kill();
  };
  EXPECT_TRUE(run({"answer", "25"}, stopAtTen).wasKilled());

  server.restart(R"([{"endpoint": "submitAnswer", "call": [1, 2, 3], "status": 500}])");
  const Ended last = run({"answer", "0"});
  EXPECT_TRUE(last.isGood()) << last.status;

  const std::vector<BotAPIAnswerDTO> wanted = script();
  EXPECT_EQ(20 + 20 + 25 + last.lines.size(), wanted.size()) << "each process goes on where the one before was killed";
  std::map<Key, BotAPIAnswerDTO> arrived;
  std::vector<BotAPIAnswerDTO> answers = record();
  for (BotAPIAnswerDTO& answer : answers) arrived.emplace(keyOf(answer), std::move(answer));
  EXPECT_EQ(arrived.size(), wanted.size());
  for (BotAPIAnswerDTO answer : wanted) {
    const auto found = arrived.find(keyOf(answer));
    ASSERT_TRUE(found != arrived.end()) << answer.messageId;
    answer.answeredAt = found->second.answeredAt;
    EXPECT_EQ(foundation::encodeJSON(found->second), foundation::encodeJSON(answer));
  }
}

}  // namespace
}  // namespace kestrom

// A host that signs in and goes through the inspection by itself, to be killed on the way:
//
//   PORT CERTIFICATE DOCUMENTS answer COUNT   gives COUNT answers and is killed; 0 gives all, delivers all and exits 0
//   PORT CERTIFICATE DOCUMENTS history        prints the answers that the server has, as JSON
//
// Prints "answered N" after the N-th answer of this process. Exits with 1 when it cannot go on.

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/SDK/DefaultDIContainer.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/Services/Cache/CacheUnique.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Tests/Support/ChatPerson.hpp"
#include "Tests/Support/OutcomeNow.hpp"

#include <csignal>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom {
namespace {

using models::BotAnswer;
using models::BotAPIAnswerDTO;
using models::KestromObjectDetails;
using services::AnyError;
using services::BotEngine;

/// All of it but the constructor belongs to the main queue.
class Host {
 public:
  explicit Host(const Platform& platform) : _platform(platform), _container(platform) {}

  /// Signs in as often as it takes, then goes on with `next`.
  void signIn(std::function<void()> next, int tries = 20) {
    _login = _container.makeLoginUseCase();
    _tokens.store(_login->execute({.accessCode = "K7M 2QX", .zipCode = "05401"})
                      .sink(
                          [this, next, tries](reactive::Completion<services::RESTError>&& completion) {
                            if (!completion.isFailure()) return;
                            if (tries == 1) return exit(1);
                            _platform.mainQueue->schedule([this, next, tries] { signIn(next, tries - 1); });
                          },
                          [this, next](KestromObjectDetails&& kestrom) {
                            _case = std::move(kestrom);
                            _answerService = _container.makeAnswerService();
                            next();
                          }));
  }

  void answerAll(int count) {
    _count = count;
    _engine = _container.makeBotEngine(_case);
    _tokens.store(_engine->start().sink([](auto&&) {},
                                        [this](BotEngine::Result&& started) {
                                          _result = std::move(started);
                                          answerNext();
                                        }));
  }

  void printHistory() {
    _tokens.store(_answerService->answersHistory(_case).sink([this](std::vector<BotAPIAnswerDTO>&& answers) {
      std::puts(foundation::encodeJSON(answers).c_str());
      exit(0);
    }));
  }

  int wait() { return _exitCode.get_future().get(); }

 private:
  void exit(int code) { _exitCode.set_value(code); }

  void answerNext() {
    auto answer = tests::scriptedAnswer(_result.conversation);
    if (!answer) return _result.isCompleted ? deliver() : exit(1);
    answer->timestamp = _platform.clock->now();
    _tokens.store(_engine->submit({*answer, true, false})
                      .sink([](auto&&) {}, [this](BotEngine::Result&& walked) { _result = std::move(walked); }));
    std::printf("answered %d\n", ++_answered);
    std::fflush(stdout);
    if (_answered == _count) std::raise(SIGKILL);
    _platform.mainQueue->schedule([this] { answerNext(); });
  }

  /// Sends what is kept, once nothing is under way any more, until nothing is kept.
  void deliver() {
    const auto unsynced = tests::outcomeNow(_answerService->unsyncedAnswers(_case));
    if (unsynced->value().empty()) return exit(0);
    const auto file = services::CacheFilename::answers(_case.organizationId, _case.id);
    bool isAnyUnderWay = false;
    for (const BotAnswer& answer : unsynced->value()) {
      const std::string key = services::cacheKey(models::apiAnswer(answer, std::nullopt));
      isAnyUnderWay = isAnyUnderWay || _container.answersUnderWay().contains(file, key);
    }
    if (!isAnyUnderWay) {
      for (const BotAnswer& answer : unsynced->value()) {
        _tokens.store(_answerService->submit(answer, _case).sink([](auto&&) {}, [](bool) {}));
      }
    }
    _platform.mainQueue->schedule([this] { deliver(); });
  }

  const Platform& _platform;
  sdk::DefaultDIContainer _container;
  std::unique_ptr<usecases::LoginUseCase> _login;
  KestromObjectDetails _case;
  std::shared_ptr<services::AnswerService> _answerService;
  std::unique_ptr<BotEngine> _engine;
  BotEngine::Result _result;
  int _count = 0;
  int _answered = 0;
  std::promise<int> _exitCode;
  reactive::Cancellables _tokens;
};

int runProgram(const std::vector<std::string>& arguments) {
  session::setCurrentEnvironment(KestromEnvironment::sandbox);
  LinuxPlatformOptions options;
  options.connectTo = LinuxPlatformOptions::Address{"127.0.0.1", static_cast<std::uint16_t>(std::stoi(arguments[1]))};
  options.certificateAuthorityFile = foundation::URL::fromFilePath(arguments[2]);
  options.documentsDirectory = foundation::URL::fromFilePath(arguments[3]);
  options.temporaryDirectory = foundation::URL::fromFilePath(arguments[3]);
  const Platform platform = linuxPlatform(options);
  // It ends with the process, as all of a host does.
  auto* host = new Host(platform);
  platform.mainQueue->schedule([host, &arguments] {
    host->signIn([host, &arguments] {
      if (arguments[4] == "history") return host->printHistory();
      host->answerAll(std::stoi(arguments[5]));
    });
  });
  const int code = host->wait();
  std::fflush(nullptr);
  std::_Exit(code);
}

}  // namespace
}  // namespace kestrom

int main(int count, char** arguments) {
  return kestrom::runProgram({arguments, arguments + count});
}

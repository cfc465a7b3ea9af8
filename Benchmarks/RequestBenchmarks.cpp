// Requests to a server on loopback, beside the library that carries them: small posts one after the other beside a bare
// loop of it that reuses its connection (the limit is 1.25), and many at once beside its own program (the limit is 1).
// The server is a process of its own, so that its work does not count as ours; it keeps an answer in its database and
// only looks the codes of a status check up. "processMicroseconds" is the processor time of a request on this side:
// what the kit has beyond the library is its own.

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/StatusCheckResponseBody.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/Networking/REST/AnswerRESTRequest.hpp"
#include "Core/Services/Networking/REST/AuthRESTRequest.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace kestrom::benchmarks {
namespace {

using foundation::Bytes;
using foundation::JSONDocument;
using services::AnswerRESTRequest;
using services::KestromObjectRESTRequest;
using services::RESTError;

constexpr int kRequests = 2000;
constexpr int kAtOnce = 64;
constexpr const char* kZipCode = "05401";
constexpr const char* kAccessCode = "K7M 2QX";

enum class Post { statusCheck, answer };

tests::SandboxProcess& server() {
  static tests::SandboxProcess process;
  return process;
}

LinuxPlatformOptions options() {
  LinuxPlatformOptions options;
  options.connectTo = LinuxPlatformOptions::Address{"127.0.0.1", server().port()};
  options.certificateAuthorityFile = foundation::URL::fromFilePath(server().certificateAuthority());
  return options;
}

models::BotAPIAnswerDTO someAnswer() {
  models::BotAPIAnswerDTO answer;
  answer.value = {std::string("Two of the three bedrooms")};
  answer.keyValue = {models::KeyValue{"bedrooms", "Two of the three bedrooms"}};
  answer.messageId = "64f0c1a2b3d4e5f607182911";
  answer.moduleId = "64f0c1a2b3d4e5f607182912";
  answer.type = "text";
  answer.locationType = "none";
  answer.context = "cv_utilities.na.skip_cv";
  answer.answeredAt = foundation::Date::fromSecondsSince1970(1'700'000'000);
  return answer;
}

/// The kit's road to the server, whole, on a main queue with a thread of its own.
class Service {
 public:
  Service() {
    session::setCurrentEnvironment(KestromEnvironment::sandbox);
    _service.emplace(services::RESTNetworkService::Parts{
        .session = _platform.urlSessionFactory->makeSession(nullptr),
        .requestModifiers = {std::make_shared<services::StandardRequestInserter>(_platform.sdkBundle),
                             std::make_shared<services::AuthenticatedRequestInserter>(_store)},
        .errorHandlers = {std::make_shared<services::GenericErrorHandler>()},
        .multipartFileWriter = nullptr,
        .mainQueue = *_platform.mainQueue,
        .clock = *_platform.clock,
    });
  }

  /// Signs in.
  session::KestromUser signIn() {
    std::promise<Bytes> promise;
    const auto token = _service->data(services::AuthRESTRequest::mobileLogin({kAccessCode, kZipCode}), _decoder)
                           .sink([](auto&&) {}, [&](Bytes&& body) { promise.set_value(std::move(body)); });
    const Bytes body = promise.get_future().get();
    const auto document = JSONDocument::parse(foundation::textOf(body));
    const auto text = [&](const char* key) { return std::string(document->root().member(key)->string()); };
    _store->setUser({text("token"), session::KestromInfo{text("organizationId"), text("kestromId")}, kAccessCode});
    return _store->user();
  }

  /// Sends `count` requests, at most `atOnce` at a time; each result starts the next one on the main queue.
  void send(Post post, int count, int atOnce) {
    {
      const std::lock_guard lock(_mutex);
      _left = count;
      _underWay = atOnce;
    }
    for (int index = 0; index < atOnce; ++index) _platform.mainQueue->schedule([this, post] { sendNext(post); });
    std::unique_lock lock(_mutex);
    _done.wait(lock, [this] { return _underWay == 0; });
  }

  int failures() const { return _failures; }

 private:
  void sendNext(Post post) {
    {
      const std::lock_guard lock(_mutex);
      if (_left == 0) {
        --_underWay;
        _done.notify_one();
        return;
      }
      --_left;
    }
    if (post == Post::answer) {
      receive(post, _service->perform(AnswerRESTRequest::submit(_answer, _store->user().currentKestromInfo->kestromId),
                                      _decoder));
    } else {
      receive(post, _service->decoded<models::StatusCheckResponseBody>(
                        KestromObjectRESTRequest::statusCheck(kZipCode, kAccessCode), _decoder));
    }
  }

  template <class Value>
  void receive(Post post, const reactive::Publisher<Value, RESTError>& results) {
    _subscriptions.store(results.sink(
        [this, post](reactive::Completion<RESTError>&& completion) {
          if (!completion.isFailure()) return;
          ++_failures;
          sendNext(post);
        },
        [this, post](Value&& value) {
          benchmark::DoNotOptimize(value);
          sendNext(post);
        }));
  }

  const models::BotAPIAnswerDTO _answer = someAnswer();
  const services::JSONDecoder& _decoder = services::defaultDecoder();
  std::shared_ptr<session::SDKStore> _store = std::make_shared<session::SDKStore>();
  Platform _platform = linuxPlatform(options());
  std::optional<services::RESTNetworkService> _service;
  reactive::Cancellables _subscriptions;
  std::mutex _mutex;
  std::condition_variable _done;
  int _left = 0;
  int _underWay = 0;
  int _failures = 0;
};

/// A request as the kit sends it, for those who send it without the kit.
struct PlainRequest {
  std::string url = "https://sandbox-api.kestrom.example";
  std::string body;
  std::vector<std::string> headers{"Content-Type: application/json", "version: 3", "sdk-version: 1.0.0"};
};

PlainRequest plainRequest(Post post) {
  PlainRequest request;
  if (post == Post::statusCheck) {
    request.url += "/kestroms/status-check";
    request.body = std::string(R"({"zipCode":")") + kZipCode + R"(","accessCode":")" + kAccessCode + R"("})";
    return request;
  }
  const session::KestromUser user = Service().signIn();
  request.url += "/kestroms/" + user.currentKestromInfo->kestromId + "/answers";
  request.body = foundation::encodeJSON(someAnswer(), foundation::DateStrategy::iso8601);
  request.headers.push_back("authorization: Bearer " + *user.token);
  request.headers.push_back("organizationId: " + user.currentKestromInfo->organizationId);
  return request;
}

std::size_t discard(char*, std::size_t size, std::size_t count, void*) {
  return size * count;
}

/// A loop of the library alone: one handle, one connection.
class BareLoop {
 public:
  explicit BareLoop(PlainRequest request) : _request(std::move(request)), _handle(curl_easy_init()) {
    for (const std::string& header : _request.headers) _headers = curl_slist_append(_headers, header.c_str());
    const std::string target = "::127.0.0.1:" + std::to_string(server().port());
    _connectTo = curl_slist_append(nullptr, target.c_str());
    curl_easy_setopt(_handle, CURLOPT_URL, _request.url.c_str());
    curl_easy_setopt(_handle, CURLOPT_CONNECT_TO, _connectTo);
    curl_easy_setopt(_handle, CURLOPT_CAINFO, server().certificateAuthority().c_str());
    curl_easy_setopt(_handle, CURLOPT_HTTPHEADER, _headers);
    curl_easy_setopt(_handle, CURLOPT_POSTFIELDS, _request.body.c_str());
    curl_easy_setopt(_handle, CURLOPT_WRITEFUNCTION, discard);
    curl_easy_setopt(_handle, CURLOPT_PROXY, "");
  }
  ~BareLoop() {
    curl_easy_cleanup(_handle);
    curl_slist_free_all(_headers);
    curl_slist_free_all(_connectTo);
  }
  BareLoop(const BareLoop&) = delete;
  BareLoop& operator=(const BareLoop&) = delete;

  bool send() {
    long status = 0;
    const bool isDone = curl_easy_perform(_handle) == CURLE_OK;
    curl_easy_getinfo(_handle, CURLINFO_RESPONSE_CODE, &status);
    return isDone && status / 100 == 2;
  }

 private:
  PlainRequest _request;
  CURL* _handle;
  curl_slist* _headers = nullptr;
  curl_slist* _connectTo = nullptr;
};

double processSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void setProcessorTime(benchmark::State& state, double before) {
  state.counters["processMicroseconds"] =
      (processSeconds() - before) * 1e6 / (static_cast<double>(state.iterations()) * kRequests);
}

void oneByOne(benchmark::State& state, Post post) {
  Service service;
  if (post == Post::answer) service.signIn();
  service.send(post, 10, 1);
  const double before = processSeconds();
  for (auto _ : state) service.send(post, kRequests, 1);
  setProcessorTime(state, before);
  if (service.failures() > 0) state.SkipWithError("a request failed");
}

void oneByOneBare(benchmark::State& state, Post post) {
  BareLoop loop(plainRequest(post));
  bool isGood = true;
  for (int index = 0; index < 10; ++index) isGood = loop.send() && isGood;
  const double before = processSeconds();
  for (auto _ : state) {
    for (int index = 0; index < kRequests; ++index) isGood = loop.send() && isGood;
  }
  setProcessorTime(state, before);
  if (!isGood) state.SkipWithError("a request failed");
}

void atOnce(benchmark::State& state) {
  Service service;
  service.send(Post::statusCheck, 2 * kAtOnce, kAtOnce);
  for (auto _ : state) service.send(Post::statusCheck, kRequests, kAtOnce);
  if (service.failures() > 0) state.SkipWithError("a request failed");
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') result += '\\';
    result += letter;
  }
  return result + '"';
}

/// The program reads its requests from a file; starting it costs a few of them.
void atOnceByProgram(benchmark::State& state) {
  const PlainRequest request = plainRequest(Post::statusCheck);
  const auto file = std::filesystem::temp_directory_path() / ("kestrom-requests-" + std::to_string(server().port()));
  {
    std::ofstream configuration(file);
    for (int index = 0; index < kRequests; ++index) {
      if (index > 0) configuration << "next\n";
      configuration << "url = " << quoted(request.url) << "\ndata = " << quoted(request.body)
                    << "\noutput = \"/dev/null\"\nsilent\nnoproxy = \"*\"\nconnect-to = "
                    << quoted("::" + server().address()) << "\ncacert = " << quoted(server().certificateAuthority())
                    << '\n';
      for (const std::string& header : request.headers) configuration << "header = " << quoted(header) << '\n';
    }
  }
  const std::string command = "curl --parallel --parallel-immediate --parallel-max " + std::to_string(kAtOnce) +
                              " --fail-early --config " + file.string() + " >/dev/null 2>&1";
  bool isGood = true;
  for (auto _ : state) isGood = std::system(command.c_str()) == 0 && isGood;
  std::filesystem::remove(file);
  if (!isGood) state.SkipWithError("the program failed");
}

void asBatch(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseRealTime()->Iterations(1)->Repetitions(7)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(oneByOne, answers, Post::answer)->Name("2000 posts/kestrom/answers")->Apply(asBatch);
BENCHMARK_CAPTURE(oneByOneBare, answers, Post::answer)->Name("2000 posts/libcurl loop/answers")->Apply(asBatch);
BENCHMARK_CAPTURE(oneByOne, checks, Post::statusCheck)->Name("2000 posts/kestrom/checks")->Apply(asBatch);
BENCHMARK_CAPTURE(oneByOneBare, checks, Post::statusCheck)->Name("2000 posts/libcurl loop/checks")->Apply(asBatch);
BENCHMARK(atOnce)->Name("2000 posts/kestrom/64 at once")->Apply(asBatch);
BENCHMARK(atOnceByProgram)->Name("2000 posts/curl --parallel/64 at once")->Apply(asBatch);

}  // namespace
}  // namespace kestrom::benchmarks

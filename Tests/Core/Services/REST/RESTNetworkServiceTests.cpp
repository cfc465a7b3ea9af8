#include "Core/Services/Networking/REST/RESTNetworkService.hpp"

#include "Core/Models/StatusCheckResponseBody.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/BotMediaUploadRESTRequest.hpp"
#include "Core/Services/Networking/REST/ConfigurationRESTRequest.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"
#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeURLSession.hpp"
#include "Tests/Support/RecordingLogSink.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::Bytes;
using foundation::URL;
using models::StatusCheckResponseBody;
using networking::URLError;
using tests::FakeURLSession;
using Lines = std::vector<std::string>;

/// What a call gave, as text that a test can compare.
template <class Value>
struct Outcome {
  std::vector<Value> values;
  std::optional<RESTError> failure;
  int ends = 0;
};

class RecordingFileWriter final : public MultipartFileWriter {
 public:
  std::expected<URL, OutputStreamError> write(const UploadRESTRequest& request) override {
    ++writes;
    if (isBroken) return std::unexpected(OutputStreamError{OutputStreamError::WriteFailure{}});
    return URL::fromFilePath("/tmp/uploads." + request.boundary());
  }
  std::expected<void, foundation::FileError> remove(const URL& file) override {
    removed.push_back(file.path());
    return std::unexpected(foundation::FileError{});
  }

  bool isBroken = false;
  int writes = 0;
  std::vector<std::string> removed;
};

/// Turns a certain failure into a value.
class RecoveringHandler final : public RESTErrorHandler {
 public:
  RecoveringHandler(std::any value, int& calls) : _value(std::move(value)), _calls(calls) {}

  reactive::Publisher<std::any, RESTError> tryHandle(RESTError, const RESTRequest&, const JSONDecoder&) const override {
    ++_calls;
    return reactive::just<RESTError>(_value);
  }

 private:
  std::any _value;
  int& _calls;
};

class RESTNetworkServiceTest : public testing::Test {
 protected:
  using Handlers = std::vector<std::shared_ptr<const RESTErrorHandler>>;

  RESTNetworkService makeService(Handlers handlers = {std::make_shared<GenericErrorHandler>()}) {
    const auto sdkBundle =
        std::make_shared<foundation::MapBundle>(foundation::MapBundle::Values{{"CFBundleShortVersionString", "1.2.3"}});
    return RESTNetworkService({
        .session = session,
        .requestModifiers = {std::make_shared<StandardRequestInserter>(sdkBundle),
                             std::make_shared<AuthenticatedRequestInserter>(store)},
        .errorHandlers = std::move(handlers),
        .multipartFileWriter = writer,
        .mainQueue = mainQueue,
        .clock = clock,
    });
  }

  template <class Value>
  void collect(const reactive::Publisher<Value, RESTError>& publisher, Outcome<Value>& outcome) {
    subscriptions.store(publisher.sink(
        [&outcome](reactive::Completion<RESTError>&& completion) {
          ++outcome.ends;
          if (completion.isFailure()) outcome.failure = completion.failure();
        },
        [&outcome](Value&& value) { outcome.values.push_back(std::move(value)); }));
  }

  /// One whole call of each kind, answered with this.
  Outcome<StatusCheckResponseBody> decodedWith(int status, const char* body) {
    session->answerAtOnce(status, body);
    Outcome<StatusCheckResponseBody> outcome;
    collect(makeService().decoded<StatusCheckResponseBody>(statusCheck, defaultDecoder()), outcome);
    mainQueue.runReady();
    return outcome;
  }
  Outcome<reactive::Nothing> performedWith(int status, const char* body) {
    session->answerAtOnce(status, body);
    Outcome<reactive::Nothing> outcome;
    collect(makeService().perform(statusCheck, defaultDecoder()), outcome);
    mainQueue.runReady();
    return outcome;
  }

  const KestromObjectRESTRequest statusCheck = KestromObjectRESTRequest::statusCheck("05401", "A1");
  const BotMediaUploadRESTRequest upload =
      BotMediaUploadRESTRequest::uploadData({1}, {MIMEType::jpeg, "k", "o", "a.jpeg", "B"});
  reactive::ManualScheduler mainQueue;
  tests::FakeClock clock;
  std::shared_ptr<FakeURLSession> session = std::make_shared<FakeURLSession>();
  std::shared_ptr<session::SDKStore> store = std::make_shared<session::SDKStore>();
  std::shared_ptr<RecordingFileWriter> writer = std::make_shared<RecordingFileWriter>();
  reactive::Cancellables subscriptions;
};

std::optional<APIError> apiError(std::int64_t code, std::optional<std::string> message = std::nullopt) {
  return APIError{std::move(message), code, std::nullopt};
}

TEST_F(RESTNetworkServiceTest, JudgesTheStatusAndTheBody) {
  struct Row {
    const char* label;
    int status;
    const char* body;
    RESTError want;
  };
  const Row rows[] = {
      {"422 with a reason", 422, R"({"statusCode":422,"message":"x"})",
       RESTError::wrongStatusResponse(422, apiError(422, "x"))},
      {"the code of the body is kept beside the status", 500, R"({"statusCode":422})",
       RESTError::wrongStatusResponse(500, apiError(422))},
      {"no code, no reason", 422, R"({"message":"x"})", RESTError::wrongStatusResponse(422, std::nullopt)},
      {"a message of another type is no reason", 422, R"({"statusCode":1,"message":7})",
       RESTError::wrongStatusResponse(422, std::nullopt)},
      {"401 with a reason", 401, R"({"statusCode":401,"error":null})", RESTError::unauthenticated(apiError(401))},
      {"401 without a body", 401, "", RESTError::unauthenticated(std::nullopt)},
      {"a redirect", 302, "", RESTError::wrongStatusResponse(302, std::nullopt)},
      {"300", 300, "{}", RESTError::wrongStatusResponse(300, std::nullopt)},
      {"199", 199, "{}", RESTError::wrongStatusResponse(199, std::nullopt)},
      {"no JSON", 500, "<html>", RESTError::wrongStatusResponse(500, std::nullopt)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const auto outcome = performedWith(row.status, row.body);
    EXPECT_EQ(outcome.failure, row.want);
    EXPECT_TRUE(outcome.values.empty());
    EXPECT_EQ(outcome.ends, 1);
  }
  const auto nothing = performedWith(204, "");
  EXPECT_EQ(nothing.values.size(), 1u);
  EXPECT_EQ(nothing.failure, std::nullopt);
  EXPECT_EQ(performedWith(299, "no JSON at all").failure, std::nullopt);

  const auto decoded = decodedWith(200, R"({"status":"invited","expiration":"soon","other":[1]})");
  EXPECT_EQ(decoded.values, (std::vector{StatusCheckResponseBody{"soon", "invited"}}));
  const auto kindOf = [&](int status, const char* body) {
    const auto failure = decodedWith(status, body).failure;
    const auto* decoding = failure ? std::get_if<RESTError::Decoding>(&failure->form) : nullptr;
    return decoding ? std::optional(decoding->error.kind) : std::nullopt;
  };
  EXPECT_EQ(kindOf(204, ""), foundation::DecodingError::Kind::syntax);
  EXPECT_EQ(kindOf(200, R"({"status":"invited","expira)"), foundation::DecodingError::Kind::syntax);
  EXPECT_EQ(kindOf(200, R"({"status":"invited"})"), foundation::DecodingError::Kind::keyNotFound);
  EXPECT_EQ(kindOf(200, R"({"status":1,"expiration":"x"})"), foundation::DecodingError::Kind::typeMismatch);
  EXPECT_EQ(kindOf(200, "[]"), foundation::DecodingError::Kind::typeMismatch);
}

TEST_F(RESTNetworkServiceTest, TellsErrorsOfTheConnectionApart) {
  const auto failureOf = [&](URLError::Code code) {
    Outcome<Bytes> outcome;
    collect(makeService().data(statusCheck, defaultDecoder()), outcome);
    session->fail(session->tasks.size() - 1, code);
    mainQueue.runReady();
    return outcome.failure;
  };
  EXPECT_EQ(failureOf(URLError::Code::userAuthenticationRequired), RESTError::unauthenticated(std::nullopt));
  EXPECT_EQ(failureOf(URLError::Code::notConnectedToInternet), RESTError::noInternetConnection());
  EXPECT_EQ(failureOf(URLError::Code::networkConnectionLost), RESTError::noInternetConnection());
  for (const auto code : {URLError::Code::timedOut, URLError::Code::cannotConnectToHost,
                          URLError::Code::serverCertificateUntrusted, URLError::Code::cancelled}) {
    EXPECT_EQ(failureOf(code), RESTError::customError(URLError{code, "made by a test"}));
  }

  Outcome<Bytes> outcome;
  collect(makeService().data(statusCheck, defaultDecoder()), outcome);
  session->complete(session->tasks.size() - 1,
                    networking::DataResponse{{}, networking::OtherURLResponse{URL::fromFilePath("/a")}});
  mainQueue.runReady();
  EXPECT_EQ(outcome.failure, RESTError::unknown());
}

TEST_F(RESTNetworkServiceTest, AddsTheHeadersOfTheMoment) {
  const auto headersOf = [&](const auto& request) {
    Outcome<Bytes> outcome;
    collect(makeService().data(request, defaultDecoder()), outcome);
    return session->tasks.back()->request.headers;
  };
  const auto anonymous = headersOf(statusCheck);
  EXPECT_EQ(anonymous.value("version"), "3");
  EXPECT_EQ(anonymous.value("sdk-version"), "1.2.3");
  EXPECT_EQ(anonymous.value("authorization"), std::nullopt);
  EXPECT_EQ(anonymous.value("organizationId"), std::nullopt);

  store->setUser({"", std::nullopt, std::nullopt});
  EXPECT_EQ(headersOf(statusCheck).value("authorization"), "Bearer ");
  EXPECT_EQ(headersOf(statusCheck).value("organizationId"), std::nullopt);
  store->setUser({"secret", session::KestromInfo{"org", "k"}, "A1"});
  EXPECT_EQ(headersOf(statusCheck).value("authorization"), "Bearer secret");
  EXPECT_EQ(headersOf(statusCheck).value("organizationId"), "org");
  EXPECT_EQ(headersOf(ConfigurationRESTRequest::getConfiguration("mine")).value("organizationId"), "mine,org");

  const StandardRequestInserter unnamed(std::make_shared<foundation::MapBundle>(foundation::MapBundle::Values{}));
  std::optional<std::string> version;
  const auto token = unnamed.modified({.url = URL::fromFilePath("/")}).sink([&](networking::URLRequest&& request) {
    version = request.headers.value("sdk-version");
  });
  EXPECT_EQ(version, "Unknown");
}

TEST_F(RESTNetworkServiceTest, RunsAnewForEachSubscriptionAndOnTheMainQueueOnly) {
  session::setCurrentEnvironment(KestromEnvironment::production);
  const auto call = makeService().perform(statusCheck, defaultDecoder());
  EXPECT_TRUE(session->tasks.empty());
  Outcome<reactive::Nothing> first;
  Outcome<reactive::Nothing> second;
  collect(call, first);
  session::setCurrentEnvironment(KestromEnvironment::staging);
  collect(call, second);
  session::setCurrentEnvironment(KestromEnvironment::production);
  ASSERT_EQ(session->tasks.size(), 2u);
  EXPECT_EQ(session->tasks[0]->request.url.absoluteString(), "https://api.kestrom.example/kestroms/status-check");
  EXPECT_EQ(session->tasks[1]->request.url.absoluteString(),
            "https://staging-api.kestrom.example/kestroms/status-check");

  session->finish(1, 200, "");
  EXPECT_EQ(second.ends, 0);
  mainQueue.runReady();
  EXPECT_EQ(second.ends, 1);
  EXPECT_EQ(first.ends, 0);

  const auto other = std::make_shared<FakeURLSession>();
  Outcome<Bytes> elsewhere;
  collect(makeService().data(statusCheck, defaultDecoder(), other), elsewhere);
  EXPECT_EQ(session->tasks.size(), 2u);
  other->finish(0, 200, "abc");
  mainQueue.runReady();
  EXPECT_EQ(elsewhere.values, (std::vector<Bytes>{{'a', 'b', 'c'}}));
}

TEST_F(RESTNetworkServiceTest, EndsTheExchangeOfACancelledCall) {
  Outcome<Bytes> outcome;
  auto token = makeService()
                   .data(statusCheck, defaultDecoder())
                   .sink([&](reactive::Completion<RESTError>&&) { ++outcome.ends; }, [&](Bytes&&) { ++outcome.ends; });
  token.cancel();
  EXPECT_TRUE(session->tasks[0]->isCancelled);
  mainQueue.runReady();
  EXPECT_EQ(outcome.ends, 0);
}

TEST_F(RESTNetworkServiceTest, UploadsThroughAFileThatItRemoves) {
  Outcome<reactive::Nothing> done;
  collect(makeService().perform(upload, defaultDecoder()), done);
  ASSERT_EQ(session->tasks.size(), 1u);
  EXPECT_EQ(session->tasks[0]->file->path(), "/tmp/uploads.B");
  EXPECT_EQ(session->tasks[0]->request.body, std::nullopt);
  EXPECT_TRUE(writer->removed.empty());
  session->finish(0, 200, "{}");
  mainQueue.runReady();
  EXPECT_EQ(done.values.size(), 1u);
  EXPECT_GE(writer->removed.size(), 1u);

  writer->removed.clear();
  Outcome<reactive::Nothing> lost;
  collect(makeService().perform(upload, defaultDecoder()), lost);
  session->fail(1, URLError::Code::networkConnectionLost);
  mainQueue.runReady();
  EXPECT_EQ(lost.failure, RESTError::noInternetConnection());
  EXPECT_EQ(writer->removed, (Lines{"/tmp/uploads.B"}));

  writer->removed.clear();
  {
    auto token = makeService().perform(upload, defaultDecoder()).sink([](auto&&) {}, [](reactive::Nothing&&) {});
  }
  EXPECT_TRUE(session->tasks[2]->isCancelled);
  EXPECT_TRUE(writer->removed.empty());

  const tests::RecordedLog log;
  writer->isBroken = true;
  Outcome<reactive::Nothing> unwritten;
  collect(makeService().perform(upload, defaultDecoder()), unwritten);
  mainQueue.runReady();
  EXPECT_EQ(unwritten.failure, RESTError::unknown());
  EXPECT_EQ(session->tasks.size(), 3u);
  ASSERT_EQ(log.lines().size(), 3u);
  EXPECT_EQ(log.lines()[1], "[KestromSDK] Cannot create a multipart data file for upload request");
}

TEST_F(RESTNetworkServiceTest, WritesTwoLinesForASuccessAndThreeForAFailure) {
  const std::string kURL = "https://api.kestrom.example/kestroms/status-check";
  const auto withoutPlace = [](std::string line) {
    const auto from = line.find(" line:");
    if (from != std::string::npos) line.erase(from, line.find(' ', from + 6) - from);
    return line;
  };
  {
    const tests::RecordedLog log;
    performedWith(200, "");
    EXPECT_EQ(log.lines(), (Lines{"[KestromSDK] URLRequest: " + kURL + " sent", "[KestromSDK] 200 " + kURL}));
  }
  const tests::RecordedLog log;
  performedWith(404, R"({"statusCode":404,"message":"no case for A1"})");
  Lines lines = log.lines();
  std::ranges::transform(lines, lines.begin(), withoutPlace);
  EXPECT_EQ(lines, (Lines{"[KestromSDK] URLRequest: " + kURL + " sent", "[KestromSDK] 404 " + kURL,
                          "[KestromSDK] GenericErrorHandler.cpp funtion:tryHandle(error:originalRequest:decoder:) "
                          "RESTError.wrongStatusResponse(404, APIError(statusCode: 404))"}));
}

TEST_F(RESTNetworkServiceTest, KeepsWhatTheUserGaveOutOfTheLog) {
  const tests::RecordedLog log;
  store->setUser({"CANARY-token", session::KestromInfo{"org", "k"}, "CANARY-code"});
  const auto request = KestromObjectRESTRequest::statusCheck("CANARY-zip", "CANARY-code");
  session->answerAtOnce(200, R"({"status":{"CANARY":"CANARY"},"expiration":"CANARY"})");
  Outcome<StatusCheckResponseBody> decoding;
  collect(makeService().decoded<StatusCheckResponseBody>(request, defaultDecoder()), decoding);
  session->answerAtOnce(401, R"({"statusCode":401,"message":"CANARY-code","error":"CANARY-code"})");
  Outcome<StatusCheckResponseBody> refused;
  collect(makeService().decoded<StatusCheckResponseBody>(request, defaultDecoder()), refused);
  mainQueue.runReady();
  EXPECT_TRUE(decoding.failure && refused.failure);
  EXPECT_EQ(log.lines().size(), 6u);
  for (const std::string& line : log.lines()) EXPECT_EQ(line.find("CANARY"), std::string::npos) << line;
}

TEST_F(RESTNetworkServiceTest, AsksTheHandlersInOrderUntilOneRecovers) {
  int calls = 0;
  int laterCalls = 0;
  const StatusCheckResponseBody kValue{"e", "s"};
  session->answerAtOnce(500, "");
  Outcome<StatusCheckResponseBody> recovered;
  collect(makeService({std::make_shared<GenericErrorHandler>(), std::make_shared<RecoveringHandler>(kValue, calls),
                       std::make_shared<RecoveringHandler>(kValue, laterCalls)})
              .decoded<StatusCheckResponseBody>(statusCheck, defaultDecoder()),
          recovered);
  mainQueue.runReady();
  EXPECT_EQ(recovered.values, std::vector{kValue});
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(laterCalls, 0);

  Outcome<Bytes> mistaken;
  collect(makeService({std::make_shared<RecoveringHandler>(kValue, calls)}).data(statusCheck, defaultDecoder()),
          mistaken);
  mainQueue.runReady();
  EXPECT_EQ(mistaken.failure, RESTError::unknown());
}

}  // namespace
}  // namespace kestrom::services

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

/// What a call gave.
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

/// Keeps what it is asked, and turns it into a value or another failure.
class RecordingHandler final : public RESTErrorHandler {
 public:
  using Answer = reactive::Publisher<std::any, RESTError>;

  RecordingHandler(Answer answer, Lines& asked) : _answer(std::move(answer)), _asked(asked) {}

  reactive::Publisher<std::any, RESTError> tryHandle(RESTError error, const RESTRequest& originalRequest,
                                                     const JSONDecoder& decoder) const override {
    const bool isDefault = decoder.dates == defaultDecoder().dates;
    _asked.push_back(debugDescription(error) + " of " + originalRequest.path() + (isDefault ? "" : ", other decoder"));
    return _answer;
  }

 private:
  Answer _answer;
  Lines& _asked;
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

  /// A whole call, answered with this.
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
}

TEST_F(RESTNetworkServiceTest, SendsThroughTheGivenSessionAndKeepsItAsLongAsTheCallRuns) {
  auto given = std::make_shared<FakeURLSession>();
  const std::weak_ptr<FakeURLSession> watched = given;
  const RESTNetworkService service = makeService();
  Outcome<Bytes> bytes;
  Outcome<StatusCheckResponseBody> record;
  Outcome<reactive::Nothing> nothing;
  Outcome<reactive::Nothing> uploaded;
  collect(service.data(statusCheck, defaultDecoder(), given), bytes);
  collect(service.decoded<StatusCheckResponseBody>(statusCheck, defaultDecoder(), given), record);
  collect(service.perform(statusCheck, defaultDecoder(), given), nothing);
  collect(service.perform(upload, defaultDecoder(), given), uploaded);
  EXPECT_TRUE(session->tasks.empty());
  ASSERT_EQ(given->tasks.size(), 4u);
  given = nullptr;
  for (std::size_t index = 0; index < 4; ++index) {
    ASSERT_FALSE(watched.expired()) << index;
    watched.lock()->finish(index, 200, R"({"status":"invited","expiration":"2030"})");
    mainQueue.runReady();
  }
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(bytes.values.size() + record.ends + nothing.values.size() + uploaded.values.size(), 4u);

  EXPECT_EQ(record.failure, std::nullopt);

  given = std::make_shared<FakeURLSession>();
  const auto late = service.perform(upload, defaultDecoder(), given);
  given = nullptr;
  Outcome<reactive::Nothing> gone;
  collect(late, gone);
  mainQueue.runReady();
  EXPECT_EQ(gone.failure, RESTError::customError(URLError{URLError::Code::unknown, "the session is gone"}));
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
  EXPECT_EQ(writer->removed, (Lines{"/tmp/uploads.B", "/tmp/uploads.B"})) << "at the answer and at the end";

  writer->removed.clear();
  Outcome<reactive::Nothing> refused;
  collect(makeService().perform(upload, defaultDecoder()), refused);
  session->finish(1, 500, "");
  mainQueue.runReady();
  EXPECT_TRUE(refused.failure);
  EXPECT_EQ(writer->removed, (Lines{"/tmp/uploads.B"})) << "at the answer; a refusal ends the call there";

  writer->removed.clear();
  Outcome<reactive::Nothing> lost;
  collect(makeService().perform(upload, defaultDecoder()), lost);
  session->fail(2, URLError::Code::networkConnectionLost);
  EXPECT_EQ(lost.ends, 0) << "failures are told on the main queue as well";
  mainQueue.runReady();
  EXPECT_EQ(lost.failure, RESTError::noInternetConnection());
  EXPECT_EQ(writer->removed, (Lines{"/tmp/uploads.B"}));

  writer->removed.clear();
  {
    auto token = makeService().perform(upload, defaultDecoder()).sink([](auto&&) {}, [](reactive::Nothing&&) {});
  }
  EXPECT_TRUE(session->tasks[3]->isCancelled);
  EXPECT_TRUE(writer->removed.empty());

  const tests::RecordedLog log;
  writer->isBroken = true;
  Outcome<reactive::Nothing> unwritten;
  collect(makeService().perform(upload, defaultDecoder()), unwritten);
  mainQueue.runReady();
  EXPECT_EQ(unwritten.failure, RESTError::unknown());
  EXPECT_EQ(session->tasks.size(), 4u);
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
  Lines asked;
  const StatusCheckResponseBody kValue{"e", "s"};
  const auto handler = [&](RecordingHandler::Answer answer) {
    return std::make_shared<RecordingHandler>(std::move(answer), asked);
  };
  const auto recovery = reactive::just<RESTError>(std::any(kValue));
  session->answerAtOnce(500, "");
  Outcome<StatusCheckResponseBody> recovered;
  collect(makeService({std::make_shared<GenericErrorHandler>(),
                       handler(reactive::fail<std::any>(RESTError::noInternetConnection())), handler(recovery),
                       handler(recovery)})
              .decoded<StatusCheckResponseBody>(statusCheck, defaultDecoder()),
          recovered);
  EXPECT_EQ(recovered.ends, 0) << "what a handler gives comes on the main queue as well";
  mainQueue.runReady();
  EXPECT_EQ(recovered.values, std::vector{kValue});
  EXPECT_EQ(asked, (Lines{"RESTError.wrongStatusResponse(500, no APIError) of /kestroms/status-check",
                          "RESTError.noInternetConnection of /kestroms/status-check"}));

  Outcome<Bytes> mistaken;
  Outcome<reactive::Nothing> mistakenToo;
  collect(makeService({handler(recovery)}).data(statusCheck, defaultDecoder()), mistaken);
  collect(makeService({handler(recovery)}).perform(statusCheck, defaultDecoder()), mistakenToo);
  mainQueue.runReady();
  EXPECT_EQ(mistaken.failure, RESTError::unknown());
  EXPECT_EQ(mistakenToo.failure, RESTError::unknown());
}

struct Dated {
  foundation::Date date;
};

}  // namespace
}  // namespace kestrom::services

namespace kestrom::foundation {

template <>
struct Coding<services::Dated> {
  static constexpr std::array kFields{field<&services::Dated::date>("date")};
};

}  // namespace kestrom::foundation

namespace kestrom::services {
namespace {

TEST(JSONDecoders, TakeEachItsOwnFormOfDates) {
  const std::string kDefault = R"({"date":"2024-02-03 10:20:30"})";
  const std::string kAnswers = R"({"date":"2024-02-03T10:20:30.250+0000"})";
  const JSONDecoder answers = answersDecoder(URL::fromFilePath("/documents"));
  EXPECT_TRUE(foundation::decodeJSON<Dated>(kDefault, defaultDecoder()));
  EXPECT_FALSE(foundation::decodeJSON<Dated>(kAnswers, defaultDecoder()));
  EXPECT_FALSE(foundation::decodeJSON<Dated>(kDefault, answers));
  const auto read = foundation::decodeJSON<Dated>(kAnswers, answers);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->date, foundation::Date::fromSecondsSince1970(1'706'955'630.25));
}

}  // namespace
}  // namespace kestrom::services

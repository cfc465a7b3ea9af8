// Every request of the catalogue on its way to a server of its own: what the server says it got is what was meant.

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/Networking/REST/AddressRESTRequest.hpp"
#include "Core/Services/Networking/REST/AnalyticRESTRequest.hpp"
#include "Core/Services/Networking/REST/AnswerRESTRequest.hpp"
#include "Core/Services/Networking/REST/AuthRESTRequest.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/ConfigurationRESTRequest.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"
#include "Core/Services/Networking/REST/UserRESTRequest.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::JSONDocument;
using foundation::JSONValue;
using foundation::URL;

/// What the server says of a request, in a form to be compared: "METHOD target status", then the headers by name but
/// for those of the connection itself, then the body as it came.
using Arrived = std::vector<std::string>;

/// Headers that every client of the protocol sends.
bool isTransport(const std::string& name) {
  constexpr std::array kNames{"Host", "Accept", "Accept-Encoding", "Content-Length"};
  return std::ranges::find(kNames, name) != kNames.end();
}

Arrived arrived(const std::string& text) {
  const auto line = JSONDocument::parse(text);
  if (!line) return {text};
  const auto textOf = [&](const char* key) {
    const auto value = line->root().member(key);
    return value && value->isString() ? std::string(value->string()) : std::string();
  };
  const auto status = line->root().member("status")->integer();
  std::vector<std::string> headers;
  const auto sent = line->root().member("headers");
  for (const JSONValue pair : sent.value()) {
    auto at = pair.begin();
    const std::string name((*at).string());
    const std::string value((*++at).string());
    if (!isTransport(name)) headers.push_back(name + ": " + value);
  }
  std::ranges::sort(headers);
  Arrived all{textOf("method") + " " + textOf("target") + " " + std::to_string(status.value_or(0))};
  all.insert(all.end(), headers.begin(), headers.end());
  all.push_back(textOf("raw"));
  return all;
}

class CatalogueTest : public testing::Test {
 protected:
  CatalogueTest() {
    session::setCurrentEnvironment(KestromEnvironment::sandbox);
    LinuxPlatformOptions options;
    options.connectTo = LinuxPlatformOptions::Address{"127.0.0.1", server.port()};
    options.certificateAuthorityFile = URL::fromFilePath(server.certificateAuthority());
    platform = linuxPlatform(options);
    service.emplace(RESTNetworkService::Parts{
        .session = platform.urlSessionFactory->makeSession(nullptr),
        .requestModifiers = {std::make_shared<StandardRequestInserter>(platform.sdkBundle),
                             std::make_shared<AuthenticatedRequestInserter>(store)},
        .errorHandlers = {std::make_shared<GenericErrorHandler>()},
        .multipartFileWriter = nullptr,
        .mainQueue = *platform.mainQueue,
        .clock = clock,
    });
  }
  ~CatalogueTest() override { session::setCurrentEnvironment(KestromEnvironment::production); }

  /// The body of the answer; the failure as text.
  template <class Request>
  std::string send(Request request) {
    std::promise<std::string> promise;
    auto future = promise.get_future();
    const auto token = service->data(std::move(request), defaultDecoder())
                           .sink(
                               [&](reactive::Completion<RESTError>&& completion) {
                                 if (completion.isFailure()) promise.set_value(debugDescription(completion.failure()));
                               },
                               [&](foundation::Bytes&& body) { promise.set_value({body.begin(), body.end()}); });
    return future.get();
  }

  /// The newest request, and what it should have been: the headers of the interface and of the kit go with every one.
  void expectLast(std::string line, std::vector<std::string> headers, std::string body) {
    headers.push_back("version: 3");
    headers.push_back("sdk-version: " + platform.sdkBundle->infoValue("CFBundleShortVersionString").value());
    std::ranges::sort(headers);
    Arrived wanted{std::move(line)};
    wanted.insert(wanted.end(), headers.begin(), headers.end());
    wanted.push_back(std::move(body));
    const std::string newest = server.requestLog().back();
    EXPECT_EQ(arrived(newest), wanted);
    EXPECT_NE(newest.find(R"("host":"sandbox-api.kestrom.example")"), std::string::npos) << newest;
  }

  tests::SandboxProcess server;
  tests::FakeClock clock;
  std::shared_ptr<session::SDKStore> store = std::make_shared<session::SDKStore>();
  Platform platform;
  std::optional<RESTNetworkService> service;
};

std::string textMember(const std::string& json, const char* key) {
  const auto document = JSONDocument::parse(json);
  const auto value = document ? document->root().member(key) : std::nullopt;
  EXPECT_TRUE(value && value->isString()) << json;
  return value && value->isString() ? std::string(value->string()) : "";
}

models::BotAPIAnswerDTO someAnswer() {
  models::BotAPIAnswerDTO answer;
  answer.value = {std::string("caf\xC3\xA9 \"1\"\n")};
  answer.keyValue = {models::KeyValue{"k", "caf\xC3\xA9 \"1\"\n"}};
  answer.messageId = "m";
  answer.moduleId = "o";
  answer.locationType = "none";
  answer.context = "c";
  answer.answeredAt = foundation::Date::fromSecondsSince1970(1'700'000'000);
  return answer;
}

models::KestromEventDTO someEvents() {
  models::KestromEventDTO events;
  events.eventUser = {"id", "Ada L", "ada@example.com", {"b", "bot", "o", "invited"}};
  models::KestromEventDetailsDTO full;
  full.eventName = "questionAnswered";
  full.timestamp = foundation::Date::fromSecondsSince1970(1'700'000'000);
  full.eventProperties.activeTime = 1.5;
  full.eventProperties.messageKey = "k";
  full.eventContext = {models::MobileContext{"1.2", "Inspector"}, models::DeviceContext{"maker", "model"},
                       models::LocationContext{44.5, -73.25}};
  models::KestromEventDetailsDTO empty;
  empty.eventName = "sessionStarted";
  empty.timestamp = full.timestamp;
  events.eventDetails = {full, empty};
  return events;
}

TEST_F(CatalogueTest, ArrivesAsItWasMeant) {
  const std::string kJSON = "Content-Type: application/json";
  const std::string login = send(AuthRESTRequest::mobileLogin({"K7M 2QX", "05401"}));
  expectLast("POST /auth/mobile-login 200", {kJSON}, R"({"accessCode":"K7M 2QX","zipCode":"05401"})");
  const std::string kestromId = textMember(login, "kestromId");
  const std::string organization = textMember(login, "organizationId");

  EXPECT_EQ(send(KestromObjectRESTRequest::kestromObject(kestromId)),
            "RESTError.unauthenticated(APIError(statusCode: 401))");
  expectLast("GET /kestroms/" + kestromId + " 401", {kJSON}, "");

  store->setUser({textMember(login, "token"), session::KestromInfo{organization, kestromId}, "K7M 2QX"});
  const std::vector<std::string> kSignedIn{kJSON, "authorization: Bearer " + textMember(login, "token"),
                                           "organizationId: " + organization};

  const std::string object = send(KestromObjectRESTRequest::kestromObject(kestromId));
  expectLast("GET /kestroms/" + kestromId + " 200", kSignedIn, "");
  EXPECT_EQ(textMember(object, "_id"), kestromId);
  const auto document = JSONDocument::parse(object);
  const std::string botId(document->root().member("bot")->member("_id")->string());
  EXPECT_TRUE(JSONDocument::parse(send(KestromObjectRESTRequest::getBot(botId)))->root().member("sequence"));
  expectLast("GET /bots/" + botId + "/sequence 200", kSignedIn, "");

  const std::string brand = send(ConfigurationRESTRequest::getConfiguration(organization));
  EXPECT_TRUE(JSONDocument::parse(brand)->root().member("defaultSettings")) << brand;
  // The request's own and that of the one who is signed in.
  expectLast("GET /brand-configs/sdk 200", {kSignedIn[0], kSignedIn[1], kSignedIn[2] + "," + organization}, "");

  send(UserRESTRequest::saveUserProfile(organization, kestromId));
  expectLast("POST /integrations/firebase/user-profile 204", kSignedIn,
             R"({"organizationId":")" + organization + R"(","kestromId":")" + kestromId + R"("})");
  send(UserRESTRequest::submitUserConstent("2", "2024-01-31"));
  expectLast("POST /integrations/firebase/user-profile 204", kSignedIn,
             R"({"termsDocumentVersion":"2","consentDate":"2023-11-14T22:13:20Z","termsDocumentDate":"2024-01-31"})");

  const std::string address = send(AddressRESTRequest::getAddress({.longitude = -73.25, .latitude = 44.5}));
  expectLast("POST /integrations/geolocations/geocode 200", kSignedIn,
             R"({"lat":44.5,"lng":-73.25,"height":400,"width":400})");
  EXPECT_TRUE(JSONDocument::parse(address)->root().member("altLocationList")) << address;

  const models::BotAPIAnswerDTO answer = someAnswer();
  send(AnswerRESTRequest::submit(answer, kestromId));
  expectLast("POST /kestroms/" + kestromId + "/answers 204", kSignedIn,
             R"({"value":"café \"1\"\n","keyValue":{"key":"k","value":"café \"1\"\n"},"iterationId":0,"messageId":"m",)"
             R"("moduleId":"o","locationType":"none","context":"c","answeredAt":"2023-11-14T22:13:20Z"})");
  const auto history = foundation::decodeJSON<models::AnswersHistoryResponse>(
      send(AnswerRESTRequest::getHistory(kestromId)), answersDecoder(URL::fromFilePath("/documents")));
  expectLast("GET /kestroms/" + kestromId + "/answers 200", kSignedIn, "");
  ASSERT_TRUE(history.has_value()) << history.error().description;
  EXPECT_EQ(history->answers, std::vector{answer});

  send(AnalyticRESTRequest::uploadEvents({someEvents()}));
  expectLast("POST /integrations/analytics/fullstory/batched-events 204", kSignedIn,
             R"({"events":[{"eventDetails":[{"eventName":"questionAnswered","timestamp":"2023-11-14T22:13:20Z",)"
             R"("eventProperties":{"activeTime":1.5,"messageKey":"k"},)"
             R"("eventContext":{"mobile":{"appVersion":"1.2","appName":"Inspector"},)"
             R"("device":{"manufacturer":"maker","model":"model"},"location":{"latitude":44.5,"longitude":-73.25}}},)"
             R"({"eventName":"sessionStarted","timestamp":"2023-11-14T22:13:20Z","eventProperties":{},)"
             R"("eventContext":{}}],"eventUser":{"id":"id","displayName":"Ada L","email":"ada@example.com",)"
             R"("properties":{"botId":"b","botName":"bot","organizationId":"o","status":"invited"}}}]})");

  send(KestromObjectRESTRequest::submit(kestromId));
  expectLast("POST /kestroms/" + kestromId + "/submit 204", kSignedIn, R"({"status":"ready_for_review"})");
  EXPECT_EQ(textMember(send(KestromObjectRESTRequest::statusCheck("05401", "K7M 2QX")), "status"), "ready_for_review");
  expectLast("POST /kestroms/status-check 200", kSignedIn, R"({"zipCode":"05401","accessCode":"K7M 2QX"})");
}

TEST_F(CatalogueTest, SendsNoHeaderThatAServerSlippedALineInto) {
  store->setUser({"good\r\nX-Evil: 1", session::KestromInfo{"o", "k"}, "c"});
  EXPECT_NE(send(KestromObjectRESTRequest::kestromObject("k")).find("URLError.invalidRequest"), std::string::npos);
  EXPECT_TRUE(server.requestLog().empty());
}

}  // namespace
}  // namespace kestrom::services

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

/// The members of a line of the server's log that matter here.
struct Arrived {
  std::string method;
  std::string target;
  std::string body;
  JSONDocument line;

  /// Headers come as pairs, in the order in which they arrived.
  std::optional<std::string> header(std::string_view name) const {
    networking::HTTPHeaders headers;
    const JSONValue pairs = line.root().member("headers").value();
    for (const JSONValue pair : pairs) {
      const auto nameAt = pair.begin();
      auto valueAt = nameAt;
      ++valueAt;
      headers.add((*nameAt).string(), (*valueAt).string());
    }
    return headers.value(name);
  }
};

Arrived arrived(const std::string& text) {
  auto line = JSONDocument::parse(text);
  EXPECT_TRUE(line.has_value()) << text;
  const auto member = [&](const char* name) { return line->root().member(name); };
  std::string body;
  if (const auto value = member("body"); value && !value->isNull()) {
    foundation::JSONWriter writer;
    writer.value(*value);
    body = writer.text();
  }
  std::string method(member("method")->string());
  std::string target(member("target")->string());
  return {std::move(method), std::move(target), std::move(body), std::move(*line)};
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

  Arrived last() { return arrived(server.requestLog().back()); }

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

TEST_F(CatalogueTest, ArrivesAsItWasMeant) {
  const std::string login = send(AuthRESTRequest::mobileLogin({"K7M 2QX", "05401"}));
  Arrived request = last();
  EXPECT_EQ(request.method + " " + request.target, "POST /auth/mobile-login");
  EXPECT_EQ(request.body, R"({"accessCode":"K7M 2QX","zipCode":"05401"})");
  EXPECT_EQ(request.header("host"), "sandbox-api.kestrom.example");
  EXPECT_EQ(request.header("content-type"), "application/json");
  EXPECT_EQ(request.header("version"), "3");
  EXPECT_TRUE(request.header("sdk-version"));
  EXPECT_FALSE(request.header("authorization"));
  EXPECT_FALSE(request.header("expect"));
  const std::string token = textMember(login, "token");
  const std::string kestromId = textMember(login, "kestromId");
  const std::string organization = textMember(login, "organizationId");

  EXPECT_EQ(send(KestromObjectRESTRequest::kestromObject(kestromId)),
            "RESTError.unauthenticated(APIError(statusCode: 401))");
  store->setUser({token, session::KestromInfo{organization, kestromId}, "K7M 2QX"});

  const std::string object = send(KestromObjectRESTRequest::kestromObject(kestromId));
  EXPECT_EQ(textMember(object, "_id"), kestromId);
  request = last();
  EXPECT_EQ(request.method + " " + request.target, "GET /kestroms/" + kestromId);
  EXPECT_EQ(request.header("authorization"), "Bearer " + token);
  EXPECT_EQ(request.header("organizationid"), organization);
  EXPECT_EQ(request.header("content-length").value_or("0"), "0");
  EXPECT_EQ(request.body, "");

  const auto document = JSONDocument::parse(object);
  const std::string botId(document->root().member("bot")->member("_id")->string());
  EXPECT_TRUE(JSONDocument::parse(send(KestromObjectRESTRequest::getBot(botId)))->root().member("sequence"));
  EXPECT_EQ(last().target, "/bots/" + botId + "/sequence");

  const std::string brand = send(ConfigurationRESTRequest::getConfiguration(organization));
  EXPECT_TRUE(JSONDocument::parse(brand)->root().member("defaultSettings")) << brand;
  EXPECT_EQ(last().header("organizationid"), organization + "," + organization);

  send(UserRESTRequest::saveUserProfile(organization, kestromId));
  EXPECT_EQ(last().body, R"({"organizationId":")" + organization + R"(","kestromId":")" + kestromId + R"("})");
  EXPECT_EQ(last().target, "/integrations/firebase/user-profile");
  send(UserRESTRequest::submitUserConstent("2", "2024-01-31"));
  EXPECT_EQ(last().body,
            R"({"termsDocumentVersion":"2","consentDate":"2023-11-14T22:13:20Z","termsDocumentDate":"2024-01-31"})");

  const std::string address = send(AddressRESTRequest::getAddress({.longitude = -73.25, .latitude = 44.5}));
  EXPECT_EQ(last().body, R"({"lat":44.5,"lng":-73.25,"height":400,"width":400})");
  EXPECT_TRUE(JSONDocument::parse(address)->root().member("altLocationList")) << address;

  models::BotAPIAnswerDTO answer;
  answer.value = {std::string("caf\xC3\xA9 \"1\"\n")};
  answer.keyValue = {models::KeyValue{"k", "caf\xC3\xA9 \"1\"\n"}};
  answer.messageId = "m";
  answer.moduleId = "o";
  answer.locationType = "none";
  answer.context = "c";
  answer.answeredAt = foundation::Date::fromSecondsSince1970(1'700'000'000);
  EXPECT_EQ(send(AnswerRESTRequest::submit(answer, kestromId)).find("RESTError"), std::string::npos);
  EXPECT_EQ(last().target, "/kestroms/" + kestromId + "/answers");
  EXPECT_EQ(textMember(last().body, "answeredAt"), "2023-11-14T22:13:20Z");
  const auto history = foundation::decodeJSON<models::AnswersHistoryResponse>(
      send(AnswerRESTRequest::getHistory(kestromId)), answersDecoder(URL::fromFilePath("/documents")));
  ASSERT_TRUE(history.has_value()) << history.error().description;
  EXPECT_EQ(history->answers, std::vector{answer});

  send(AnalyticRESTRequest::uploadEvents({}));
  EXPECT_EQ(last().target, "/integrations/analytics/fullstory/batched-events");
  EXPECT_EQ(last().body, R"({"events":[]})");

  send(KestromObjectRESTRequest::submit(kestromId));
  EXPECT_EQ(last().body, R"({"status":"ready_for_review"})");
  EXPECT_EQ(textMember(send(KestromObjectRESTRequest::statusCheck("05401", "K7M 2QX")), "status"), "ready_for_review");
  EXPECT_EQ(last().body, R"({"zipCode":"05401","accessCode":"K7M 2QX"})");
}

TEST_F(CatalogueTest, SendsNoHeaderThatAServerSlippedALineInto) {
  store->setUser({"good\r\nX-Evil: 1", session::KestromInfo{"o", "k"}, "c"});
  EXPECT_NE(send(KestromObjectRESTRequest::kestromObject("k")).find("URLError.invalidRequest"), std::string::npos);
  EXPECT_TRUE(server.requestLog().empty());
}

}  // namespace
}  // namespace kestrom::services

#include "Core/SDK/ProcessValues.hpp"
#include "Core/Services/Networking/REST/AddressRESTRequest.hpp"
#include "Core/Services/Networking/REST/AnalyticRESTRequest.hpp"
#include "Core/Services/Networking/REST/AnswerRESTRequest.hpp"
#include "Core/Services/Networking/REST/AuthRESTRequest.hpp"
#include "Core/Services/Networking/REST/BotMediaUploadRESTRequest.hpp"
#include "Core/Services/Networking/REST/ConfigurationRESTRequest.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"
#include "Core/Services/Networking/REST/UserRESTRequest.hpp"
#include "Tests/Support/FakeClock.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace kestrom::services {
namespace {

using foundation::Date;
using foundation::URL;
using networking::URLRequest;
using tests::FakeClock;

constexpr const char* kJSON = "application/json";

std::optional<std::string> bodyText(const URLRequest& request) {
  if (!request.body) return std::nullopt;
  return std::string(request.body->begin(), request.body->end());
}

models::BotAPIAnswerDTO answerOf(double lat) {
  models::BotAPIAnswerDTO answer;
  answer.value = {std::string("yes")};
  answer.keyValue = {models::KeyValue{"y", "yes"}};
  answer.location = models::LocationSnapshotDTO{{13.5, lat}, "Point"};
  answer.iterationId = 2;
  answer.messageId = "m";
  answer.moduleId = "o";
  answer.type = "buttons";
  answer.locationType = "precise";
  answer.context = "c";
  answer.answeredAt = Date::fromSecondsSince1970(1'700'000'000.75);
  return answer;
}

models::KestromEventDTO eventOf(double activeTime) {
  models::KestromEventDTO event;
  event.eventUser = {"k", "Ada Brook", "ada@example.com", {"b", "Bot", "o", "invited"}};
  models::KestromEventDetailsDTO details;
  details.eventName = "sdk_closed";
  details.timestamp = Date::fromSecondsSince1970(1'700'000'000);
  details.eventProperties.activeTime = activeTime;
  event.eventDetails = {details};
  return event;
}

BotMediaUploadRESTRequest::Media media() {
  return {MIMEType::jpeg, "k", "o", "a.jpeg", "B"};
}

struct Row {
  const char* label;
  std::shared_ptr<const RESTRequest> request;
  const char* method;
  const char* path;
  std::optional<std::string> body;
  std::string contentType = kJSON;
};

template <class Request>
std::shared_ptr<const RESTRequest> of(Request request) {
  return std::make_shared<const Request>(std::move(request));
}

TEST(RESTRequest, HasTheWholeCatalogue) {
  session::setCurrentEnvironment(KestromEnvironment::production);
  const URL kVideo = URL::fromFilePath("/v.mp4");
  const std::string kMultipart = "multipart/form-data; boundary=B";
  const Row rows[] = {
      {"login", of(AuthRESTRequest::mobileLogin({"A", "Z"})), "POST", "/auth/mobile-login",
       R"({"accessCode":"A","zipCode":"Z"})"},
      {"case", of(KestromObjectRESTRequest::kestromObject("abc")), "GET", "/kestroms/abc", std::nullopt},
      {"status check", of(KestromObjectRESTRequest::statusCheck("Z", "A")), "POST", "/kestroms/status-check",
       R"({"zipCode":"Z","accessCode":"A"})"},
      {"submit", of(KestromObjectRESTRequest::submit("abc")), "POST", "/kestroms/abc/submit",
       R"({"status":"ready_for_review"})"},
      {"bot", of(KestromObjectRESTRequest::getBot("b")), "GET", "/bots/b/sequence", std::nullopt},
      {"profile", of(UserRESTRequest::saveUserProfile("o", "k")), "POST", "/integrations/firebase/user-profile",
       R"({"organizationId":"o","kestromId":"k"})"},
      {"consent", of(UserRESTRequest::submitUserConstent("2", "")), "POST", "/integrations/firebase/user-profile",
       R"({"termsDocumentVersion":"2","consentDate":"2023-11-14T22:13:20Z","termsDocumentDate":""})"},
      {"brand", of(ConfigurationRESTRequest::getConfiguration("o")), "GET", "/brand-configs/sdk", std::nullopt},
      {"address", of(AddressRESTRequest::getAddress({.longitude = 13.25, .latitude = -52})), "POST",
       "/integrations/geolocations/geocode", R"({"lat":-52,"lng":13.25,"height":400,"width":400})"},
      {"answer", of(AnswerRESTRequest::submit(answerOf(52), "k")), "POST", "/kestroms/k/answers",
       R"({"value":"yes","keyValue":{"key":"y","value":"yes"},"location":{"coordinates":[13.5,52],"type":"Point"},)"
       R"("iterationId":2,"messageId":"m","moduleId":"o","type":"buttons","locationType":"precise","context":"c",)"
       R"("answeredAt":"2023-11-14T22:13:20Z"})"},
      {"history", of(AnswerRESTRequest::getHistory("k")), "GET", "/kestroms/k/answers", std::nullopt},
      {"events", of(AnalyticRESTRequest::uploadEvents({eventOf(1.5)})), "POST",
       "/integrations/analytics/fullstory/batched-events",
       R"({"events":[{"eventDetails":[{"eventName":"sdk_closed","timestamp":"2023-11-14T22:13:20Z",)"
       R"("eventProperties":{"activeTime":1.5},"eventContext":{}}],"eventUser":{"id":"k","displayName":"Ada Brook",)"
       R"("email":"ada@example.com","properties":{"botId":"b","botName":"Bot","organizationId":"o","status":"invited"}}}]})"},
      {"photo", of(BotMediaUploadRESTRequest::uploadData({1, 2}, media())), "POST",
       "/integrations/firebase/upload-media", std::nullopt, kMultipart},
      {"video", of(BotMediaUploadRESTRequest::uploadVideo(kVideo, media())), "POST",
       "/integrations/firebase/upload-media", std::nullopt, kMultipart},
      {"bundle", of(BotMediaUploadRESTRequest::uploadBundle(kVideo, media())), "POST",
       "/integrations/firebase/upload-media", std::nullopt, kMultipart},
  };
  const FakeClock clock;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const URLRequest request = row.request->urlRequest(clock);
    EXPECT_EQ(request.method, row.method);
    EXPECT_EQ(request.url.absoluteString(), "https://api.kestrom.example" + std::string(row.path));
    EXPECT_EQ(bodyText(request), row.body);
    EXPECT_EQ(request.headers.value("content-type"), row.contentType);
    EXPECT_EQ(request.timeoutInterval, std::chrono::seconds(60));
    const bool isBrand = std::string_view(row.label) == "brand";
    EXPECT_EQ(request.headers.value("organizationId"), isBrand ? std::optional<std::string>("o") : std::nullopt);
  }
}

TEST(RESTRequest, IsOfTheMomentAtWhichItIsBuilt) {
  const auto profile = UserRESTRequest::submitUserConstent("1", "d");
  FakeClock clock;
  session::setCurrentEnvironment(KestromEnvironment::staging);
  const URLRequest first = profile.urlRequest(clock);
  clock.advance(61);
  session::setCurrentEnvironment(KestromEnvironment::sandbox);
  const URLRequest second = profile.urlRequest(clock);
  session::setCurrentEnvironment(KestromEnvironment::production);
  EXPECT_EQ(first.url.absoluteString(), "https://staging-api.kestrom.example/integrations/firebase/user-profile");
  EXPECT_EQ(second.url.absoluteString(), "https://sandbox-api.kestrom.example/integrations/firebase/user-profile");
  EXPECT_NE(bodyText(first)->find("22:13:20Z"), std::string::npos);
  EXPECT_NE(bodyText(second)->find("22:14:21Z"), std::string::npos);
}

TEST(RESTRequest, KeepsIdentifiersFromOutsideInThePath) {
  const FakeClock clock;
  const auto urlOf = [&](const char* id) {
    return KestromObjectRESTRequest::submit(id).urlRequest(clock).url.absoluteString();
  };
  const std::string kBase = "https://api.kestrom.example/kestroms/";
  EXPECT_EQ(urlOf("a b?x=1#y"), kBase + "a%20b%3Fx=1%23y/submit");
  EXPECT_EQ(urlOf("50%25"), kBase + "50%2525/submit");
  EXPECT_EQ(urlOf("../../auth"), kBase + "../../auth/submit");
  EXPECT_EQ(urlOf("\xC3\xA9\r\nHost: x"), kBase + "%C3%A9%0D%0AHost:%20x/submit");
  EXPECT_EQ(urlOf(""), kBase + "/submit");
  EXPECT_EQ(urlOf("@evil.example:1/"), kBase + "@evil.example:1//submit");
}

TEST(RESTRequest, GoesOutWithoutABodyThatHasNoFormInJSON) {
  const FakeClock clock;
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(AddressRESTRequest::getAddress({kNaN, 1}).urlRequest(clock).body, std::nullopt);
  EXPECT_EQ(AnswerRESTRequest::submit(answerOf(kNaN), "k").urlRequest(clock).body, std::nullopt);
  EXPECT_EQ(AnalyticRESTRequest::uploadEvents({eventOf(1 / 0.0)}).urlRequest(clock).body, std::nullopt);
}

TEST(BotMediaUploadRESTRequest, HasOnePartForTheMedium) {
  const URL kFile = URL::fromFilePath("/pool.tar");
  auto bundle = media();
  bundle.mimeType = MIMEType::tar;
  EXPECT_EQ(BotMediaUploadRESTRequest::uploadBundle(kFile, bundle).parameters(),
            (std::vector{MultipartParameter{"media", "a.jpeg", "tar", kFile}}));
  EXPECT_EQ(BotMediaUploadRESTRequest::uploadData({1, 2, 3}, media()).parameters(),
            (std::vector{MultipartParameter{"media", "a.jpeg", "jpeg", foundation::Bytes{1, 2, 3}}}));
  EXPECT_EQ(rawValue(MIMEType::plainText), "plainText");
}

}  // namespace
}  // namespace kestrom::services

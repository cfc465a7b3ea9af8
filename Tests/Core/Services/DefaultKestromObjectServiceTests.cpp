#include "Core/Services/DefaultKestromObjectService.hpp"

#include "Core/SDK/ProcessValues.hpp"
#include "Tests/Support/CaseSamples.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/FakeAnswerService.hpp"
#include "Tests/Support/TestREST.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::services {
namespace {

using models::KestromObjectDetails;
using networking::URLError;
using tests::kBot;
using tests::kCase;
using Details = tests::Collected<KestromObjectDetails, RESTError>;

/// The case with one piece of its text exchanged.
std::string caseWith(std::string_view piece, std::string_view replacement) {
  std::string text(kCase);
  const std::size_t at = text.find(piece);
  EXPECT_NE(at, std::string::npos) << piece;
  return text.replace(at, piece.size(), replacement);
}

class KestromObjectServiceTest : public testing::Test {
 protected:
  ~KestromObjectServiceTest() override { session::setCurrentEnvironment(KestromEnvironment::production); }

  /// The service is gone when its answers come.
  std::unique_ptr<Details> get() {
    return std::make_unique<Details>(DefaultKestromObjectService(rest.service(), answers, defaultDecoder()).get("c1"));
  }
  /// A whole load of this case.
  KestromObjectDetails loaded(std::string_view json) {
    const auto details = get();
    rest.answer(200, json);
    rest.answer(200, kBot);
    EXPECT_EQ(details->values.size(), 1u) << json;
    return details->values.at(0);
  }

  tests::TestREST rest;
  std::shared_ptr<tests::FakeAnswerService> answers = std::make_shared<tests::FakeAnswerService>();
};

TEST_F(KestromObjectServiceTest, LoadsTheCaseAndThenItsTemplate) {
  const auto details = get();
  EXPECT_EQ(rest.sent(), (std::vector<std::string>{"GET /kestroms/c1"}));
  rest.answer(200, kCase);
  EXPECT_EQ(rest.sent().back(), "GET /bots/b1/sequence");
  EXPECT_TRUE(details->values.empty());
  rest.answer(200, kBot);
  EXPECT_EQ(rest.sent().size(), 2u);

  ASSERT_EQ(details->values.size(), 1u);
  EXPECT_EQ(details->ends, 1);
  const KestromObjectDetails& value = details->values[0];
  EXPECT_EQ(value.id, "c1");
  EXPECT_EQ(value.customer, (KestromObjectDetails::Customer{"a@b.c", "Brook", "Ada"}));
  EXPECT_EQ(value.property,
            (KestromObjectDetails::Property{"US", "05401", "VT", "Burlington", "Unit B", "12 Maple Street"}));
  EXPECT_EQ(value.accessCode, "K7M");
  EXPECT_EQ(value.organizationId, "o1");
  EXPECT_EQ(value.status, "in_progress");
  ASSERT_EQ(value.bot->sequence.size(), 1u);
  EXPECT_EQ(value.bot->sequence[0].id, "m1");
  EXPECT_EQ(value.analyticUser,
            (KestromAnalyticUser{"c1", "Ada Brook", "a@b.c", "b1", "Home", "o1", "in_progress", false}));
  EXPECT_EQ(value.rawJSON->root().member("policy")->member("itemLimit")->integer(), 2500);
  EXPECT_EQ(value.rawJSON->root().member("customer")->member("email")->string(), "a@b.c");
}

TEST_F(KestromObjectServiceTest, LeavesOutWhatTheServerDoesNotSay) {
  for (const std::string_view absent : {"", R"("streetAddress2":null,)"}) {
    EXPECT_EQ(loaded(caseWith(R"("streetAddress2":"Unit B",)", absent)).property.streetAddress2, std::nullopt);
  }
  EXPECT_EQ(loaded(caseWith("Brook", "")).analyticUser.name, "Ada ");
}

TEST_F(KestromObjectServiceTest, NamesTheEnvironmentInWhichTheCaseArrives) {
  for (const auto environment : {KestromEnvironment::staging, KestromEnvironment::sandbox}) {
    const auto details = get();
    rest.answer(200, kCase);
    session::setCurrentEnvironment(environment);
    rest.answer(200, kBot);
    EXPECT_EQ(details->values.at(0).analyticUser.isStaging, environment == KestromEnvironment::staging);
  }
}

TEST_F(KestromObjectServiceTest, FailsWhereARequiredMemberIsMissing) {
  struct Row {
    std::string_view member;
    std::string_view path;
  };
  const Row rows[] = {
      {R"("_id":"c1")", "_id"},
      {R"("customer")", "customer"},
      {R"("email")", "customer.email"},
      {R"("lastName")", "customer.lastName"},
      {R"("firstName")", "customer.firstName"},
      {R"("property")", "property"},
      {R"("country")", "property.country"},
      {R"("zipCode")", "property.zipCode"},
      {R"("state")", "property.state"},
      {R"("city")", "property.city"},
      {R"("streetAddress1")", "property.streetAddress1"},
      {R"("bot")", "bot"},
      {R"("_id":"b1")", "bot._id"},
      {R"("name")", "bot.name"},
      {R"("accessCode")", "accessCode"},
      {R"("organizationId")", "organizationId"},
      {R"("status")", "status"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    const auto details = get();
    const std::string renamed = "\"-" + std::string(row.member.substr(1));
    rest.answer(200, caseWith(row.member, renamed));
    ASSERT_TRUE(details->failure);
    const auto* decoding = std::get_if<RESTError::Decoding>(&details->failure->form);
    ASSERT_TRUE(decoding);
    EXPECT_EQ(decoding->error.kind, foundation::DecodingError::Kind::keyNotFound);
    EXPECT_EQ(decoding->error.path, row.path);
    EXPECT_EQ(rest.sent().back(), "GET /kestroms/c1");
  }
}

TEST_F(KestromObjectServiceTest, WrapsWhateverElseFailsBeforeTheTemplate) {
  struct Row {
    const char* label;
    std::optional<URLError::Code> lost;
    int status;
    const char* body;
    RESTError want;
  };
  const Row rows[] = {
      {"connection lost", URLError::Code::networkConnectionLost, 0, "", RESTError::noInternetConnection()},
      {"401", {}, 401, "", RESTError::unauthenticated(std::nullopt)},
      {"500", {}, 500, R"({"statusCode":7})", RESTError::wrongStatusResponse(500, APIError{{}, 7, {}})},
      {"a list", {}, 200, "[{}]", RESTError::parsingFailed()},
      {"a text", {}, 200, R"("case")", RESTError::parsingFailed()},
  };
  for (const Row& row : rows) {
    const auto details = get();
    row.lost ? rest.fail(*row.lost) : rest.answer(row.status, row.body);
    EXPECT_EQ(details->failure, RESTError::customError(row.want)) << row.label;
  }

  for (const std::string_view body : {"", "{\"_id\":\"SECRET", "<html>SECRET"}) {
    const auto details = get();
    rest.answer(200, body);
    ASSERT_TRUE(details->failure) << body;
    const auto* custom = std::get_if<RESTError::CustomError>(&details->failure->form);
    ASSERT_TRUE(custom) << body;
    EXPECT_TRUE(custom->error.as<foundation::JSONSyntaxError>()) << body;
    EXPECT_FALSE(debugDescription(*details->failure).contains("SECRET"));
  }
}

TEST_F(KestromObjectServiceTest, PassesAFailureOfTheTemplateAsItIs) {
  const auto load = [this] {
    auto details = get();
    rest.answer(200, caseWith("in_progress", "invited"));
    return details;
  };
  auto details = load();
  rest.fail(URLError::Code::notConnectedToInternet);
  EXPECT_EQ(details->failure, RESTError::noInternetConnection());

  details = load();
  rest.answer(404, "");
  EXPECT_EQ(details->failure, RESTError::wrongStatusResponse(404, std::nullopt));

  details = load();
  rest.answer(200, R"({"sequence":[{"type":"module","key":"k"}]})");
  ASSERT_TRUE(details->failure);
  const auto* decoding = std::get_if<RESTError::Decoding>(&details->failure->form);
  ASSERT_TRUE(decoding);
  EXPECT_EQ(decoding->error.path, "sequence[0].id");
  EXPECT_TRUE(answers->cleared.empty());
}

TEST_F(KestromObjectServiceTest, ForgetsWhatWasKeptOfACaseThatIsMerelyInvited) {
  for (const std::string_view status : {"in_progress", "Invited", "invited ", ""}) {
    loaded(caseWith("in_progress", status));
    EXPECT_TRUE(answers->cleared.empty()) << status;
  }

  std::vector<std::string> clearedBefore;
  const auto subscription = DefaultKestromObjectService(rest.service(), answers, defaultDecoder())
                                .get("c1")
                                .sink([](reactive::Completion<RESTError>&&) {},
                                      [&](KestromObjectDetails&&) { clearedBefore = answers->cleared; });
  rest.answer(200, caseWith("in_progress", "invited"));
  EXPECT_TRUE(answers->cleared.empty());
  rest.answer(200, kBot);
  EXPECT_EQ(clearedBefore, (std::vector<std::string>{"o1/c1"}));
}

}  // namespace
}  // namespace kestrom::services

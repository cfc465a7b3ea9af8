#include "Core/Services/DefaultAuthenticationService.hpp"

#include "Tests/Support/CaseSamples.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/TestREST.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrom::services {
namespace {

using models::MobileLoginResponseBody;
using Login = tests::Collected<MobileLoginResponseBody, RESTError>;

class AuthenticationServiceTest : public testing::Test {
 protected:
  /// The service is gone when its answer comes.
  std::unique_ptr<Login> login() {
    return std::make_unique<Login>(
        DefaultAuthenticationService(rest.service()).login({.accessCode = "K7M 2QX", .zipCode = "05401"}));
  }

  tests::TestREST rest;
};

TEST_F(AuthenticationServiceTest, TradesTheCodesForATokenAndTouchesNobodysStore) {
  const auto collected = login();
  EXPECT_EQ(rest.sent(),
            (std::vector<std::string>{R"(POST /auth/mobile-login {"accessCode":"K7M 2QX","zipCode":"05401"})"}));
  rest.answer(200, tests::kLogin);
  EXPECT_EQ(collected->values, (std::vector{MobileLoginResponseBody{"t.o.k", "o1", "c1"}}));
  EXPECT_EQ(collected->ends, 1);
  EXPECT_EQ(rest.store->user(), session::KestromUser());
}

TEST_F(AuthenticationServiceTest, FailsWhereARequiredMemberIsMissing) {
  for (const std::string_view member : {"token", "organizationId", "kestromId"}) {
    SCOPED_TRACE(member);
    const auto collected = login();
    std::string renamed(tests::kLogin);
    rest.answer(200, renamed.insert(renamed.find(member), "-"));
    ASSERT_TRUE(collected->failure);
    const auto* decoding = std::get_if<RESTError::Decoding>(&collected->failure->form);
    ASSERT_TRUE(decoding);
    EXPECT_EQ(decoding->error.path, member);
  }
}

TEST_F(AuthenticationServiceTest, TellsWhatTheServerSaysOfWrongCodes) {
  auto collected = login();
  rest.answer(401, "");
  EXPECT_EQ(collected->failure, RESTError::unauthenticated(std::nullopt));

  collected = login();
  rest.answer(404, R"({"statusCode":404,"message":"No such case"})");
  EXPECT_EQ(collected->failure, RESTError::wrongStatusResponse(404, APIError{"No such case", 404, {}}));
}

}  // namespace
}  // namespace kestrom::services

#include "Core/UseCases/DefaultSubmitTermsConsentUseCase.hpp"

#include "Core/Services/DefaultUserService.hpp"
#include "Tests/Support/Collected.hpp"
#include "Tests/Support/TestREST.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace kestrom::usecases {
namespace {

TEST(SubmitTermsConsent, SendsOnceForEachSubscriptionAndTellsOfFailures) {
  tests::TestREST rest;
  const auto consent =
      DefaultSubmitTermsConsentUseCase(std::make_shared<services::DefaultUserService>(rest.service()))
          .execute(*foundation::URL::parse("https://legal.example/terms?version=3&dateOfDocument=2024-02-29"));
  EXPECT_TRUE(rest.sent().empty());

  const tests::Collected<reactive::Nothing, services::RESTError> collected(consent);
  ASSERT_EQ(rest.sent().size(), 1u);
  EXPECT_TRUE(rest.sent()[0].contains(R"("termsDocumentVersion":"3")")) << rest.sent()[0];
  rest.answer(500, "");
  EXPECT_EQ(collected.failure, services::RESTError::wrongStatusResponse(500, std::nullopt));
}

}  // namespace
}  // namespace kestrom::usecases

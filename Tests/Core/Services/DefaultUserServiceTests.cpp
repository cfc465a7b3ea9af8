#include "Core/Services/DefaultUserService.hpp"

#include "Tests/Support/Collected.hpp"
#include "Tests/Support/TestREST.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestrom::services {
namespace {

using foundation::URL;
using Done = tests::Collected<reactive::Nothing, RESTError>;

class UserServiceTest : public testing::Test {
 protected:
  /// What is sent for the terms at this address; the service is gone by then.
  std::string sentFor(const std::string& address) {
    const auto url = URL::parse(address);
    if (!url) return "no URL";
    const Done done(DefaultUserService(rest.service()).submitConsent(*url));
    rest.answer(200, "no JSON");
    EXPECT_EQ(done.values.size(), 1u);
    EXPECT_EQ(done.ends, 1);
    return rest.sent().back();
  }

  tests::TestREST rest;
};

TEST_F(UserServiceTest, SavesTheProfileAndReadsNoBody) {
  const Done saved(DefaultUserService(rest.service()).saveUserProfile("o1", "c1"));
  EXPECT_EQ(rest.sent().back(), R"(POST /integrations/firebase/user-profile {"organizationId":"o1","kestromId":"c1"})");
  rest.answer(204, "");
  EXPECT_EQ(saved.values.size(), 1u);

  const Done failed(DefaultUserService(rest.service()).saveUserProfile("o1", "c1"));
  rest.answer(500, "");
  EXPECT_EQ(failed.failure, RESTError::wrongStatusResponse(500, std::nullopt));
}

TEST_F(UserServiceTest, NamesTheTermsByTheQueryOfTheirAddress) {
  struct Row {
    const char* query;
    const char* version;
    const char* date;
  };
  const Row rows[] = {
      {"?version=3&dateOfDocument=2024-02-29", "3", "2024-02-29"},
      {"?dateOfDocument=May%201%2C%202024&lang=en&version=3+4#version=9", "3+4", "May 1, 2024"},
      {"?version=1&version=2&dateOfDocument=a&dateOfDocument=b", "1", "a"},
      {"?version&version=2&dateOfDocument=&dateOfDocument=b", "", ""},
      {"?Version=3&dateofdocument=a&xversion=4", "", ""},
      {"?", "", ""},
      {"", "", ""},
      {"#?version=3", "", ""},
  };
  rest.clock.set(1'709'210'096.7);
  for (const Row& row : rows) {
    EXPECT_EQ(sentFor(std::string("https://legal.example/terms") + row.query),
              std::string(R"(POST /integrations/firebase/user-profile {"termsDocumentVersion":")") + row.version +
                  R"(","consentDate":"2024-02-29T12:34:56Z","termsDocumentDate":")" + row.date + "\"}")
        << row.query;
  }
  EXPECT_NE(sentFor("mailto:terms@legal.example?version=3").find(R"("termsDocumentVersion":"3")"), std::string::npos);
}

TEST_F(UserServiceTest, DatesTheConsentAtItsSending) {
  rest.clock.set(0);
  const auto consent = DefaultUserService(rest.service()).submitConsent(*URL::parse("https://legal.example/"));
  rest.clock.set(86'400);
  const Done done(consent);
  EXPECT_NE(rest.sent().back().find(R"("consentDate":"1970-01-02T00:00:00Z")"), std::string::npos);
}

}  // namespace
}  // namespace kestrom::services

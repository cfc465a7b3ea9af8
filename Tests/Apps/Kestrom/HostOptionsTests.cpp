#include "Apps/kestrom/HostOptions.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestrom::app {
namespace {

using device::LocationBehavior;

TEST(HostOptions, ReadsAddresses) {
  struct Row {
    const char* text;
    std::optional<std::string> host;
    int port = 0;
  };
  const Row rows[] = {
      {"127.0.0.1:8443", "127.0.0.1", 8443},
      {"[::1]:443", "::1", 443},
      {"localhost:65535", "localhost", 65535},
      {"localhost", std::nullopt},
      {"localhost:", std::nullopt},
      {"localhost:0", std::nullopt},
      {"localhost:65536", std::nullopt},
      {"localhost:44x", std::nullopt},
      {":443", std::nullopt},
      {"::1:443", std::nullopt},
      {"[]:443", std::nullopt},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const auto address = parseAddress(row.text);
    ASSERT_EQ(address.has_value(), row.host.has_value());
    if (!address) continue;
    EXPECT_EQ(address->host, *row.host);
    EXPECT_EQ(address->port, row.port);
  }
}

TEST(HostOptions, ReadsLocations) {
  using device::LocationAccuracyAuthorization;
  const LocationBehavior kPlace{LocationBehavior::Place{{44.5, -73.25}, LocationAccuracyAuthorization::full}};
  const LocationBehavior kReduced{LocationBehavior::Place{{44.5, -73.25}, LocationAccuracyAuthorization::reduced}};
  EXPECT_EQ(parseLocation("44.5,-73.25"), kPlace);
  EXPECT_EQ(parseLocation("44.5,-73.25,reduced"), kReduced);
  EXPECT_EQ(parseLocation("denied"), LocationBehavior{LocationBehavior::Denied{}});
  EXPECT_EQ(parseLocation("fails"), LocationBehavior{LocationBehavior::Fails{}});
  EXPECT_EQ(parseLocation("never"), LocationBehavior{LocationBehavior::Never{}});
  for (const char* text :
       {"", "44.5", "44.5,", "91,0", "0,181", "nan,0", "44.5,-73.25,full", "44.5, -73.25", "Denied"}) {
    EXPECT_EQ(parseLocation(text), std::nullopt) << text;
  }
}

TEST(HostOptions, SaysWhichOptionIsWrong) {
  HostOptions options;
  options.notifications = "maybe";
  const auto platform = platformFor(options);
  ASSERT_FALSE(platform.has_value());
  EXPECT_EQ(platform.error(), "--notifications: \"maybe\" is no undetermined, granted or denied");
}

}  // namespace
}  // namespace kestrom::app

#include "Core/SDK/Logging.hpp"

#include "Core/SDK/KestromDeepLinkCredentials.hpp"
#include "Tests/Support/RecordingLogSink.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrom::session {
namespace {

using tests::RecordedLog;
using Lines = std::vector<std::string>;

TEST(Logging, WritesNothingUntilTheHostWantsIt) {
  const auto sink = std::make_shared<tests::RecordingLogSink>();
  setLogSink(sink);
  logInfo("nobody reads this");
  logError("nor this", "anything()");
  EXPECT_TRUE(sink->lines().empty());
  setLogSink(std::make_shared<foundation::StandardErrorLogSink>());
}

TEST(Logging, HasTheFormatsThatSupportSearchesFor) {
  const RecordedLog log;
  logInfo("a message");
  logError("the error", "locationManager(_:didFailWithError:)");
  const int line = __LINE__ - 1;
  EXPECT_EQ(log.lines(), (Lines{"[KestromSDK] a message",
                                "[KestromSDK] LoggingTests.cpp funtion:locationManager(_:didFailWithError:) line:" +
                                    std::to_string(line) + " the error"}));
  using foundation::LogLevel;
  EXPECT_EQ(log.levels(), (std::vector{LogLevel::info, LogLevel::error}));
}

struct LinkRow {
  const char* label;
  const char* link;
  std::optional<KestromDeepLinkCredentials> want;
  Lines log;
};

TEST(KestromDeepLinkCredentials, ReadsTheCodesOfALink) {
  const Lines kNoItems{"[KestromSDK] URL was invalid or did not have query items"};
  const Lines kMissing{"[KestromSDK] Invalid Kestrom deeplinking parameters"};
  const KestromDeepLinkCredentials kBoth{"A 1", "05401", true};
  const LinkRow rows[] = {
      {"both", "app://x/y?kestromZipCode=05401&kestromAccessCode=A%201", kBoth, {}},
      {"the last of equal names", "app:?kestromZipCode=1&kestromAccessCode=A%201&kestromZipCode=05401", kBoth, {}},
      {"a name without a value takes it back", "app:?kestromZipCode=1&kestromAccessCode=A&kestromZipCode", std::nullopt,
       kMissing},
      {"empty values are values",
       "app:?kestromZipCode=&kestromAccessCode=",
       KestromDeepLinkCredentials{"", "", true},
       {}},
      {"no access code", "app://x?kestromZipCode=05401", std::nullopt, kMissing},
      {"an empty query", "app://x?", std::nullopt, kMissing},
      {"no query", "app://x/kestromZipCode=1", std::nullopt, kNoItems},
      {"names are not guessed", "app:?kestromzipcode=1&KestromAccessCode=2", std::nullopt, kMissing},
  };
  for (const LinkRow& row : rows) {
    SCOPED_TRACE(row.label);
    const RecordedLog log;
    EXPECT_EQ(KestromDeepLinkCredentials::parse(*foundation::URL::parse(row.link), true), row.want);
    EXPECT_EQ(log.lines(), row.log);
  }
}

}  // namespace
}  // namespace kestrom::session

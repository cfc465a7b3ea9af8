#include "Platform/Foundation/FatalError.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace kestrom::foundation {
namespace {

/// Marks its lines on the standard error stream, where a death test can see them.
class MarkingLogSink final : public LogSink {
 public:
  void write(LogLevel level, std::string_view line) override {
    const std::string text = (level == LogLevel::error ? "error <" : "info <") + std::string(line) + ">";
    std::fputs(text.c_str(), stderr);
  }
};

TEST(FatalErrorDeathTest, LeavesExactlyItsTextAndAborts) {
  EXPECT_EXIT(fatalError("No 100% of {it}"), testing::KilledBySignal(SIGABRT), "^No 100% of \\{it\\}\n$");
}

TEST(FatalErrorDeathTest, WritesToTheSinkOfTheHost) {
  static MarkingLogSink sink;
  const auto fail = [] {
    setFatalErrorSink(sink);
    fatalError("Gone");
  };
  EXPECT_EXIT(fail(), testing::KilledBySignal(SIGABRT), "^error <Gone>$");
}

}  // namespace
}  // namespace kestrom::foundation

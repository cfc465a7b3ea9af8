#include "Tests/Support/ChildProcess.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kestrom {
namespace {

TEST(ProcessEnd, ComesAtAnyMoment) {
  const tests::SandboxProcess server(R"([{"endpoint": "statusCheck", "call": "all", "delay": 30}])");
  for (int round = 0; round < 40; ++round) {
    const auto ended = tests::runProcess({KESTROM_HASTY_HOST, std::to_string(server.port()),
                                          server.certificateAuthority(), std::to_string(round * round * 16)});
    ASSERT_TRUE(ended.isGood()) << "round " << round << " ended with " << ended.status;
  }
}

}  // namespace
}  // namespace kestrom

#include "Kestrom/Platform/NotificationCenter.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kestrom::foundation {
namespace {

class NotificationCenterTest : public testing::Test {
 protected:
  std::function<void()> note(std::string text) {
    return [this, text = std::move(text)] { log += text; };
  }

  NotificationCenter center;
  std::string log;
};

TEST_F(NotificationCenterTest, CallsTheObserversOfTheNameInTheirOrder) {
  const auto first = center.addObserver("x", note("1"));
  const auto other = center.addObserver("y", note("2"));
  auto third = center.addObserver("x", note("3"));
  center.post("x");
  EXPECT_EQ(log, "13");

  NotificationCenter::Observation moved = std::move(third);
  center.post("x");
  EXPECT_EQ(log, "1313");
  moved = center.addObserver("x", note("4"));
  center.post("x");
  EXPECT_EQ(log, "131314");
}

TEST_F(NotificationCenterTest, AnObserverMayEndItselfInItsHandler) {
  std::optional<NotificationCenter::Observation> observation;
  const auto payload = std::make_shared<std::string>("alive");
  observation.emplace(center.addObserver("x", [&, payload] {
    observation.reset();
    log += *payload;
  }));
  center.post("x");
  center.post("x");
  EXPECT_EQ(log, "alive");
  EXPECT_EQ(payload.use_count(), 1);
}

TEST_F(NotificationCenterTest, AnObserverRemovedDuringAPostIsNotCalledAndAnAddedOneWaits) {
  std::optional<NotificationCenter::Observation> last;
  NotificationCenter::Observation added;
  const auto first = center.addObserver("x", [&] {
    log += "1";
    if (!last) return;
    last.reset();
    added = center.addObserver("x", note("3"));
  });
  last.emplace(center.addObserver("x", note("2")));
  center.post("x");
  EXPECT_EQ(log, "1");
  center.post("x");
  EXPECT_EQ(log, "113");
}

TEST_F(NotificationCenterTest, AHandlerMayPostAgain) {
  int depth = 0;
  const auto observation = center.addObserver("x", [&] {
    if (++depth < 3) center.post("x");
  });
  center.post("x");
  EXPECT_EQ(depth, 3);
}

TEST(NotificationCenter, AnObservationMayOutliveTheCenter) {
  auto center = std::make_unique<NotificationCenter>();
  const auto observation = center->addObserver("x", [] {});
  center.reset();
}

TEST(NotificationCenter, ADropWaitsForACallOnAnotherThread) {
  NotificationCenter center;
  std::latch isRunning(1);
  std::atomic<bool> isDropped = false;
  bool ranBehindTheDrop = false;
  std::optional<NotificationCenter::Observation> observation(center.addObserver("x", [&] {
    isRunning.count_down();
    // Room for a drop that does not wait to come back.
    for (int turn = 0; turn < 10000 && !isDropped; ++turn) std::this_thread::yield();
    ranBehindTheDrop = isDropped;
  }));
  std::thread posting([&] { center.post("x"); });
  isRunning.wait();
  observation.reset();
  isDropped = true;
  posting.join();
  EXPECT_FALSE(ranBehindTheDrop);
}

TEST(NotificationCenter, ObserversComeAndGoWhileOthersPost) {
  NotificationCenter center;
  std::atomic<bool> isDone = false;
  std::vector<std::thread> posting;
  for (int count = 0; count < 2; ++count) {
    posting.emplace_back([&] {
      while (!isDone) center.post("x");
    });
  }
  for (int round = 0; round < 2000; ++round) {
    auto counter = std::make_unique<int>(0);
    auto observation = center.addObserver("x", [at = counter.get()] { ++*at; });
    center.post("x");
    observation = {};
    EXPECT_GE(*counter, 1);
  }
  isDone = true;
  for (std::thread& thread : posting) thread.join();
}

}  // namespace
}  // namespace kestrom::foundation

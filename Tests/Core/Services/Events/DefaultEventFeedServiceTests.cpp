#include "Core/Services/Events/DefaultEventFeedService.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

namespace kestrom::services {
namespace {

KestromEvent closedAfter(double activeTime) {
  return {.timestamp = {}, .trigger = {KestromEvent::Trigger::SDKClosed{activeTime}}, .user = std::nullopt};
}

TEST(DefaultEventFeedService, TellsEachEventToThosePresentAndToNobodyLater) {
  DefaultEventFeedService feed;
  feed.send(closedAfter(1));

  std::vector<KestromEvent> early;
  std::vector<KestromEvent> late;
  const auto earlyToken = feed.eventPublisher().sink([&](KestromEvent&& event) { early.push_back(std::move(event)); });
  feed.send(closedAfter(2));
  {
    const auto lateToken = feed.eventPublisher().sink([&](KestromEvent&& event) { late.push_back(std::move(event)); });
    feed.send(closedAfter(3));
  }
  feed.send(closedAfter(4));

  EXPECT_EQ(early, (std::vector{closedAfter(2), closedAfter(3), closedAfter(4)}));
  EXPECT_EQ(late, std::vector{closedAfter(3)});
}

}  // namespace
}  // namespace kestrom::services

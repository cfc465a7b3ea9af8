#include "Platform/Reactive/Combining.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Platform/Reactive/Subjects.hpp"
#include "Tests/Platform/Reactive/Trace.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace kestrom::reactive {
namespace {

using namespace std::chrono_literals;
using Subject = PassthroughSubject<int, std::string>;

class TimedOperators : public testing::Test {
 protected:
  /// A timer that outlives its subscription keeps the phone awake and the chain alive.
  void TearDown() override { EXPECT_EQ(scheduler.pendingCount(), 0U); }

  static Completion<std::string> failed(std::string text) { return Completion<std::string>::failed(std::move(text)); }

  ManualScheduler scheduler;
  Subject subject;
};

TEST_F(TimedOperators, ReceiveOnKeepsTheOrderAndDeliversLaterOnly) {
  Trace trace(subject.publisher().receiveOn(scheduler));
  subject.send(1);
  subject.send(2);
  subject.finish(failed("gone"));
  EXPECT_EQ(trace.news(), "");
  scheduler.runReady();
  EXPECT_EQ(trace.news(), " 1 2 !gone");
}

TEST_F(TimedOperators, NothingQueuedIsDeliveredAfterACancel) {
  int mapped = 0;
  const auto count = [&](int value) {
    ++mapped;
    return value;
  };
  Trace queued(subject.publisher().receiveOn(scheduler).map(count));
  Trace delayed(subject.publisher().delay(1s, scheduler).map(count));
  subject.send(1);
  queued.cancel();
  delayed.cancel();
  scheduler.advance(2s);
  EXPECT_EQ(queued.text() + delayed.text(), "");
  EXPECT_EQ(mapped, 0) << "nor does anything on the way run";
}

TEST_F(TimedOperators, DelayMovesValuesFailuresAndEnds) {
  Trace trace(subject.publisher().delay(2s, scheduler));
  subject.send(1);
  scheduler.advance(1s);
  subject.send(2);
  subject.finish(failed("gone"));
  scheduler.advance(1s - 1ns);
  EXPECT_EQ(trace.news(), "");
  scheduler.advance(1ns);
  EXPECT_EQ(trace.news(), " 1");
  scheduler.advance(1s - 1ns);
  EXPECT_EQ(trace.news(), "");
  scheduler.advance(1ns);
  EXPECT_EQ(trace.news(), " 2 !gone");

  Trace without(just(1).delay(0s, scheduler));
  EXPECT_EQ(without.news(), "") << "no delay is still not inside sink";
  scheduler.runReady();
  EXPECT_EQ(without.news(), " 1 |");
}

TEST_F(TimedOperators, TimeoutCountsFromTheSubscriptionAndFromEachValue) {
  int cancels = 0;
  Trace trace(
      subject.publisher().handleEvents({.onCancel = [&] { ++cancels; }}).timeout(10s, scheduler, std::string("late")));
  scheduler.advance(10s - 1ns);
  subject.send(1);
  scheduler.advance(10s - 1ns);
  EXPECT_EQ(trace.news(), " 1");
  scheduler.advance(1ns);
  EXPECT_EQ(trace.news(), " !late");
  EXPECT_EQ(cancels, 1);
  subject.send(2);
  EXPECT_EQ(trace.news(), "");
}

TEST_F(TimedOperators, TimeoutLeavesAloneWhatEnds) {
  Trace atOnce(just<std::string>(1).timeout(10s, scheduler, std::string("late")));
  EXPECT_EQ(atOnce.news(), " 1 |");
  EXPECT_EQ(scheduler.pendingCount(), 0U);

  Trace failing(subject.publisher().timeout(10s, scheduler, std::string("late")));
  subject.finish(failed("gone"));
  scheduler.advance(20s);
  EXPECT_EQ(failing.news(), " !gone");
}

TEST_F(TimedOperators, ATimeoutCanBeReplaced) {
  Trace trace(subject.publisher().timeout(10s, scheduler, std::string("late")).replaceError(-1));
  scheduler.advance(10s);
  EXPECT_EQ(trace.news(), " -1 |");
}

TEST_F(TimedOperators, CollectGroupsByIntervalsFromTheSubscriptionOn) {
  scheduler.advance(7s);
  Trace trace(subject.publisher().collect(30s, scheduler));
  subject.send(1);
  scheduler.advance(30s - 1ns);
  subject.send(2);
  EXPECT_EQ(trace.news(), "");
  scheduler.advance(1ns);
  EXPECT_EQ(trace.news(), " [1,2]");
  subject.send(3);
  scheduler.advance(30s);
  EXPECT_EQ(trace.news(), " [3]");
  scheduler.advance(60s);
  EXPECT_EQ(trace.news(), "") << "an interval without values";
  subject.send(4);
  subject.finish();
  EXPECT_EQ(trace.news(), " [4] |");

  Subject other;
  Trace failing(other.publisher().collect(30s, scheduler));
  other.send(1);
  other.finish(failed("gone"));
  EXPECT_EQ(failing.news(), " !gone") << "a failure drops what is held";
}

TEST_F(TimedOperators, ThrottleLetsOneThroughInAnInterval) {
  Trace latest(subject.publisher().throttle(10s, scheduler, true));
  Trace earliest(subject.publisher().throttle(10s, scheduler, false));
  const auto news = [&] { return latest.news() + " /" + earliest.news(); };
  subject.send(1);
  EXPECT_EQ(news(), " 1 / 1");
  subject.send(2);
  scheduler.advance(10s - 1ns);
  subject.send(3);
  EXPECT_EQ(news(), " /");
  scheduler.advance(1ns);
  EXPECT_EQ(news(), " 3 / 2");
  scheduler.advance(10s - 1ns);
  subject.send(4);
  EXPECT_EQ(news(), " /") << "what was held opened an interval of its own";
  scheduler.advance(1ns);
  EXPECT_EQ(news(), " 4 / 4");
  scheduler.advance(10s);
  subject.send(5);
  EXPECT_EQ(news(), " 5 / 5") << "at once after a quiet interval";
  subject.send(6);
  subject.finish();
  EXPECT_EQ(news(), " 6 | / 6 |");
}

TEST_F(TimedOperators, ATimerDoesNotDriftAndEndsWithItsSubscription) {
  std::vector<Duration> due;
  AnyCancellable token;
  token = timer(60s, scheduler).sink([&](TimePoint moment) {
    due.push_back(moment.time_since_epoch());
    EXPECT_EQ(scheduler.now(), moment);
    if (due.size() == 3) token.cancel();
  });
  scheduler.runReady();
  scheduler.advance(60s - 1ns);
  EXPECT_EQ(due.size(), 0U);
  scheduler.advance(1ns);
  scheduler.advance(100s);
  scheduler.advance(200s);
  EXPECT_EQ(due, (std::vector<Duration>{60s, 120s, 180s}));
}

TEST_F(TimedOperators, EachSubscriptionOfATimerHasItsOwnStart) {
  const auto ticks = timer(10s, scheduler).scan(0, [](int count, TimePoint) { return count + 1; });
  Trace first(ticks);
  scheduler.advance(5s);
  Trace second(ticks);
  scheduler.advance(5s);
  EXPECT_EQ(first.news() + " /" + second.news(), " 1 /");
  scheduler.advance(5s);
  EXPECT_EQ(first.news() + " /" + second.news(), " / 1");
  first.cancel();
  second.cancel();
}

}  // namespace
}  // namespace kestrom::reactive

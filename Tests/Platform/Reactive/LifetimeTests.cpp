#include "Platform/Reactive/Combining.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Platform/Reactive/Subjects.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

// What a subscription holds, when it lets go of it, and who may disappear in the middle of a delivery.
namespace kestrom::reactive {
namespace {

using namespace std::chrono_literals;

constexpr int kManyRounds = 100;

TEST(Lifetime, AFlatMapThatLastsKeepsNothingOfWhatHasFinishedInIt) {
  ManualScheduler scheduler;
  const auto life = std::make_shared<int>(0);
  using Life = std::shared_ptr<int>;
  struct Row {
    std::string_view label;
    std::function<Publisher<Life, Never>()> inner;
  };
  const Row rows[] = {
      {"future",
       [&] {
         auto resolved = std::make_shared<std::optional<Promise<Life, Never>>>();
         auto publisher = future<Life, Never>([&](Promise<Life, Never> promise) { *resolved = promise; });
         scheduler.schedule([resolved, life] { (**resolved)(life); });
         return publisher;
       }},
      {"delay", [&] { return just(life).delay(1s, scheduler); }},
      {"handler of cancelling", [&] { return just(life).handleEvents({.onCancel = [life] {}}); }},
      {"merge", [&] { return mergeMany<Life, Never>({just(life), just(life).receiveOn(scheduler)}); }},
      {"zip",
       [&] { return zip(just(life), just(life).delay(1s, scheduler)).map([](auto both) { return both.first; }); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    PassthroughSubject<int> requests;
    int received = 0;
    const AnyCancellable token =
        requests.publisher().flatMap([&](int) { return row.inner(); }).sink([&](const Life&) { ++received; });
    const auto before = life.use_count();
    for (int round = 0; round < kManyRounds; ++round) {
      requests.send(round);
      scheduler.advance(1s);
    }
    EXPECT_GE(received, kManyRounds);
    EXPECT_EQ(life.use_count(), before);
  }
}

TEST(Lifetime, OnlyACancelIsToldAsOne) {
  int cancels = 0;
  const auto watched = [&](const Publisher<int, Never>& publisher) {
    return publisher.handleEvents({.onCancel = [&] { ++cancels; }});
  };
  PassthroughSubject<int> a;
  PassthroughSubject<int> b;
  PassthroughSubject<int> endless;
  const AnyCancellable joined[] = {
      watched(a.publisher()).flatMap([&](int value) { return watched(just(value)); }).sink([](int) {}),
      combineLatest(watched(a.publisher()), watched(b.publisher())).sink([](auto) {}),
      mergeMany<int, Never>({watched(a.publisher()), watched(b.publisher())}).sink([](int) {}),
  };
  a.send(1);
  b.send(2);
  a.finish();
  b.finish();
  EXPECT_EQ(cancels, 0) << "parts that finished by themselves";

  AnyCancellable token = watched(just(1)).append(endless.publisher()).sink([](int) {});
  token.cancel();
  EXPECT_EQ(cancels, 0) << "a part that had finished before the rest was cancelled";

  token = watched(endless.publisher()).sink([](int) {});
  token.cancel();
  EXPECT_EQ(cancels, 1);
}

TEST(Lifetime, RetryTellsACancelOnce) {
  int cancels = 0;
  int attempts = 0;
  PassthroughSubject<int, std::string> endless;
  AnyCancellable token = deferred([&] { return ++attempts < 3 ? fail<int>(std::string("busy")) : endless.publisher(); })
                             .handleEvents({.onCancel = [&] { ++cancels; }})
                             .retry(5)
                             .sink([](const Completion<std::string>&) {}, [](int) {});
  EXPECT_EQ(attempts, 3);
  token.cancel();
  EXPECT_EQ(cancels, 1);
}

TEST(Lifetime, ASubjectMayEndInsideItsOwnDelivery) {
  int values = 0;
  int ends = 0;
  auto subject = std::make_unique<PassthroughSubject<std::string>>();
  const auto subscribe = [&] {
    return subject->publisher().sink(
        [&](const Completion<Never>&) {
          ++ends;
          subject = nullptr;
        },
        [&](const std::string& value) { values += value == "too long to lie within the string itself"; });
  };
  const AnyCancellable first = subscribe();
  const AnyCancellable second = subscribe();
  subject->send("too long to lie within the string itself");
  subject->finish();
  EXPECT_EQ(values, 2);
  EXPECT_EQ(ends, 2);
}

TEST(Lifetime, ACancelOnTheWayDownLeavesNoTimer) {
  ManualScheduler scheduler;
  PassthroughSubject<int> subject;
  AnyCancellable token;
  int received = 0;
  token =
      subject.publisher().handleEvents({.onOutput = [&](int) { token.cancel(); }}).delay(1s, scheduler).sink([&](int) {
        ++received;
      });
  subject.send(1);
  EXPECT_EQ(scheduler.pendingCount(), 0U);
  scheduler.advance(1s);
  EXPECT_EQ(received, 0);
}

TEST(Lifetime, CancellablesThatAreRefilledWhileTheyEndEndEmpty) {
  int cancels = 0;
  auto cancellables = std::make_unique<Cancellables>();
  Cancellables& held = *cancellables;
  for (int i = 0; i < 3; ++i) {
    held.store(AnyCancellable([&] { held.store(AnyCancellable([&] { ++cancels; })); }));
  }
  cancellables = nullptr;
  EXPECT_EQ(cancels, 3);
}

TEST(Lifetime, TheShortestIntervalOfATimerIsAMillisecond) {
  ManualScheduler scheduler;
  int ticks = 0;
  const AnyCancellable token = timer(0s, scheduler).sink([&](TimePoint) { ++ticks; });
  scheduler.runReady();
  EXPECT_EQ(ticks, 0);
  scheduler.advance(10ms);
  EXPECT_EQ(ticks, 10);
}

TEST(Lifetime, TwoDeliveriesThatCancelEachOtherBothEnd) {
  PassthroughSubject<int> a;
  PassthroughSubject<int> b;
  AnyCancellable tokenOfA;
  AnyCancellable tokenOfB;
  std::latch bothRun(2);
  tokenOfA = a.publisher().sink([&](int) {
    bothRun.arrive_and_wait();
    tokenOfB.cancel();
  });
  tokenOfB = b.publisher().sink([&](int) {
    bothRun.arrive_and_wait();
    tokenOfA.cancel();
  });
  std::thread other([&] { b.send(1); });
  a.send(1);
  other.join();
  a.send(2);
  b.send(2);
  EXPECT_TRUE(tokenOfA.isDone());
  EXPECT_TRUE(tokenOfB.isDone());
}

TEST(Lifetime, NothingIsDeliveredOnceACancelOnAnotherThreadHasReturned) {
  for (int round = 0; round < kManyRounds; ++round) {
    PassthroughSubject<int> subject;
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isLate = false;
    std::atomic<bool> mayStop = false;
    std::latch isSending(2);
    bool hasBegun = false;
    AnyCancellable token = subject.publisher().map([](int value) { return value + 1; }).sink([&](int) {
      if (isCancelled) isLate = true;
    });
    std::thread sender([&] {
      while (!mayStop) {
        subject.send(1);
        if (!std::exchange(hasBegun, true)) isSending.count_down();
      }
    });
    isSending.arrive_and_wait();
    token.cancel();
    isCancelled = true;
    mayStop = true;
    sender.join();
    EXPECT_FALSE(isLate);
  }
}

}  // namespace
}  // namespace kestrom::reactive

#include "Kestrom/Platform/MainQueue.hpp"
#include "Platform/Reactive/Combining.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/SerialQueue.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <latch>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kestrom::reactive {
namespace {

using namespace std::chrono_literals;

TEST(ManualTime, RunsByDueTimeThenByScheduling) {
  ManualScheduler scheduler;
  std::string order;
  std::vector<AnyCancellable> tokens;
  const auto after = [&](Duration duration, char name) {
    tokens.push_back(scheduler.scheduleAfter(duration, [&, name] { order += name; }));
  };
  after(3s, 'e');
  after(1s, 'b');
  after(1s, 'c');
  scheduler.schedule([&] {
    order += 'a';
    after(2s, 'd');
    after(0s, 'A');
  });
  after(-5s, 'z');
  scheduler.runReady();
  EXPECT_EQ(order, "azA") << "what is scheduled for now by what runs now, too";
  scheduler.advance(3s);
  EXPECT_EQ(order, "azAbcde");
  EXPECT_EQ(scheduler.now().time_since_epoch(), 3s);
}

TEST(ManualTime, StandsAtTheDueTimeWhileWorkRuns) {
  ManualScheduler scheduler(TimePoint(100s));
  std::vector<Duration> moments;
  std::vector<AnyCancellable> tokens;
  tokens.push_back(scheduler.scheduleAfter(2s, [&] {
    moments.push_back(scheduler.now().time_since_epoch());
    tokens.push_back(scheduler.scheduleAfter(3s, [&] { moments.push_back(scheduler.now().time_since_epoch()); }));
    tokens.push_back(scheduler.scheduleAfter(4s, [&] { moments.push_back(scheduler.now().time_since_epoch()); }));
  }));
  scheduler.advance(5s);
  EXPECT_EQ(moments, (std::vector<Duration>{102s, 105s}));
  EXPECT_EQ(scheduler.pendingCount(), 1U);
}

TEST(ManualTime, WorkMayCancelWhatIsDueWithIt) {
  ManualScheduler scheduler;
  bool hasRun = false;
  AnyCancellable second;
  const auto first = scheduler.scheduleAfter(1s, [&] { second.cancel(); });
  second = scheduler.scheduleAfter(1s, [&] { hasRun = true; });
  scheduler.advance(1s);
  EXPECT_FALSE(hasRun);
}

/// A main queue on a clock that the test moves.
class HostLoop : public testing::Test {
 protected:
  TimePoint time;
  int wakeUps = 0;
  MainQueue queue{[this] { return time; }};
};

TEST_F(HostLoop, RunsWhatIsDueAndLeavesWhatIsScheduledMeanwhile) {
  queue.setWakeUp([this] { ++wakeUps; });
  int rounds = 0;
  struct Again {
    static void schedule(MainQueue& on, int& counter) {
      on.schedule([&on, &counter] {
        ++counter;
        schedule(on, counter);
      });
    }
  };
  EXPECT_EQ(queue.nextDueTime(), std::nullopt);
  Again::schedule(queue, rounds);
  EXPECT_EQ(wakeUps, 1);
  queue.runDue();
  EXPECT_EQ(rounds, 1) << "a host's loop must get its turn";
  EXPECT_EQ(wakeUps, 2) << "and be told to come back";
  queue.runDue();
  EXPECT_EQ(rounds, 2);
}

TEST_F(HostLoop, TellsWhenToComeBack) {
  bool hasRun = false;
  AnyCancellable early = queue.scheduleAfter(2s, [] {});
  const AnyCancellable late = queue.scheduleAfter(5s, [&] { hasRun = true; });
  EXPECT_EQ(queue.nextDueTime(), TimePoint(2s));
  early.cancel();
  EXPECT_EQ(queue.nextDueTime(), TimePoint(5s));
  time += 5s - 1ns;
  queue.runDue();
  EXPECT_FALSE(hasRun);
  time += 1ns;
  queue.runDue();
  EXPECT_TRUE(hasRun);
  EXPECT_EQ(queue.nextDueTime(), std::nullopt);
}

TEST_F(HostLoop, ATimerThatWasHeldUpKeepsItsBeatAndSkipsWhatItMissed) {
  std::vector<TimePoint> due;
  const AnyCancellable token = timer(10s, queue).sink([&](TimePoint moment) { due.push_back(moment); });
  time += 13s;
  queue.runDue();
  time += 32s;
  queue.runDue();
  EXPECT_EQ(queue.nextDueTime(), TimePoint(50s));
  time += 5s;
  queue.runDue();
  EXPECT_EQ(due, (std::vector{TimePoint(10s), TimePoint(20s), TimePoint(50s)}));
}

TEST(QueueThreads, RunEndsWhenStoppedFromInsideOutsideOrBefore) {
  MainQueue queue;
  queue.stop();
  queue.run();

  int ran = 0;
  queue.schedule([&] {
    ++ran;
    queue.stop();
  });
  queue.schedule([&] { ++ran; });
  queue.run();
  EXPECT_EQ(ran, 1);

  std::latch isRunning(1);
  queue.schedule([&] { isRunning.count_down(); });
  std::thread loop([&] { queue.run(); });
  isRunning.wait();
  queue.stop();
  loop.join();
  EXPECT_EQ(ran, 2);
}

TEST(QueueThreads, WorkOfEachThreadKeepsItsOrder) {
  constexpr int kThreads = 3;
  constexpr int kWorks = 500;
  SerialQueue queue("order");
  std::array<int, kThreads> next{};
  bool isInOrder = true;
  std::latch done(kThreads * kWorks);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int work = 0; work < kWorks; ++work) {
        queue.schedule([&, thread, work] {
          isInOrder = isInOrder && next[thread]++ == work;
          done.count_down();
        });
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  done.wait();
  EXPECT_TRUE(isInOrder);
}

TEST(QueueThreads, AQueueThatEndsDropsWhatHasNotRun) {
  const auto life = std::make_shared<int>(0);
  AnyCancellable timerToken;
  {
    SerialQueue queue("ends");
    timerToken = queue.scheduleAfter(1h, [life] {});
    std::latch isBusy(1);
    std::latch mayGoOn(1);
    queue.schedule([&] {
      isBusy.count_down();
      mayGoOn.wait();
    });
    isBusy.wait();
    mayGoOn.count_down();
  }
  EXPECT_EQ(life.use_count(), 1);
  timerToken.cancel();
}

TEST(QueueThreads, AQueueMayGoOnceItsLastWorkHasRun) {
  for (int round = 0; round < 300; ++round) {
    auto queue = std::make_unique<SerialQueue>("short-lived");
    std::promise<void> hasRun;
    std::thread other([&queue = *queue, &hasRun] { queue.schedule([&hasRun] { hasRun.set_value(); }); });
    // The other thread may be on its way out of the call yet.
    hasRun.get_future().wait();
    queue = nullptr;
    other.join();
  }
}

TEST(QueueThreads, AFutureResolvedElsewhereArrivesOnTheMainQueue) {
  for (int round = 0; round < 200; ++round) {
    MainQueue main;
    SerialQueue network("network");
    const std::thread::id here = std::this_thread::get_id();
    std::optional<int> received;
    const AnyCancellable token =
        future<int, Never>([&](const Promise<int, Never>& promise) { network.schedule([promise] { promise(7); }); })
            .map([](int value) { return value * 6; })
            .receiveOn(main)
            .sink([&](const Completion<Never>&) { main.stop(); },
                  [&](int value) {
                    EXPECT_EQ(std::this_thread::get_id(), here);
                    received = value;
                  });
    main.run();
    EXPECT_EQ(received, 42);
  }
}

TEST(QueueThreads, PartsOnSeveralThreadsComeOneAfterTheOther) {
  constexpr int kValues = 300;
  SerialQueue one("one");
  SerialQueue two("two");
  std::latch done(1);
  int total = 0;
  const std::vector<int> many(kValues, 1);
  const AnyCancellable token =
      mergeMany<int, Never>({listed(many).receiveOn(one), listed(many).receiveOn(two), listed(many)})
          .scan(0, [](int sum, int value) { return sum + value; })
          .sink([&](const Completion<Never>&) { done.count_down(); }, [&](int sum) { total = sum; });
  done.wait();
  EXPECT_EQ(total, 3 * kValues);
}

TEST(QueueThreads, ATimerIsSilentOnceItsCancelHasReturned) {
  for (int round = 0; round < 100; ++round) {
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isLate = false;
    {
      SerialQueue queue("timer");
      std::latch hasTicked(1);
      std::atomic<int> ticks = 0;
      AnyCancellable token = timer(1ms, queue).sink([&](TimePoint) {
        if (isCancelled) isLate = true;
        if (ticks++ == 0) hasTicked.count_down();
      });
      // Some are cancelled beside a tick, some before the first.
      if (round % 2 == 0) hasTicked.wait();
      token.cancel();
      isCancelled = true;
    }
    EXPECT_FALSE(isLate);
  }
}

}  // namespace
}  // namespace kestrom::reactive

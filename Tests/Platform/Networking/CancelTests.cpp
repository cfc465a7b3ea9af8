#include "Kestrom/Platform/MainQueue.hpp"
#include "Tests/Platform/Networking/SessionTest.hpp"

#include <atomic>
#include <optional>
#include <random>

namespace kestrom::networking {
namespace {

using tests::answerOf;
using tests::LoopbackConnection;
using tests::LoopbackServer;
using CancelTest = SessionTest;

TEST_F(CancelTest, EndsTheExchangeAndDropsTheCompletion) {
  std::promise<void> isRead;
  std::promise<void> isEnded;
  const auto server = serve([&](LoopbackConnection& connection, int) {
    connection.readRequest();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
    isRead.set_value();
    connection.waitForEnd();
    isEnded.set_value();
  });
  auto session = sessionFor(*server);
  const auto witness = std::make_shared<int>();
  std::atomic<int> callCount = 0;
  auto token = session->downloadTask(requestTo("https://api.test/"),
                                     [&, held = witness](const DownloadResult&) { ++callCount; });
  isRead.get_future().wait();
  EXPECT_FALSE(token.isDone());
  token.cancel();
  EXPECT_EQ(witness.use_count(), 1) << "destroyed before the cancelling returns";
  isEnded.get_future().wait();
  EXPECT_EQ(callCount, 0);
  session.reset();
  EXPECT_EQ(temporaryFileCount(), 0u);
}

TEST_F(CancelTest, StartsNothingThatIsCancelledBefore) {
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  const auto session = sessionFor(*server);
  std::promise<void> isDone;
  std::optional<reactive::AnyCancellable> second;
  // While the first completion runs, nothing else does; what needs a file waits for the session's thread.
  const auto first = session->dataTask(requestTo("https://api.test/"), [&](const DataResult&) {
    second = session->downloadTask(requestTo("https://api.test/"), [&](const DownloadResult&) { ADD_FAILURE(); });
    second->cancel();
    isDone.set_value();
  });
  isDone.get_future().wait();
  EXPECT_EQ(textOf(fetch(*session, requestTo("https://api.test/"))), "x");
  EXPECT_EQ(server->requests().size(), 2u);
}

TEST_F(CancelTest, HoldsForWhatTheQueueHasNotDeliveredYet) {
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  reactive::MainQueue queue;
  std::promise<void> isScheduled;
  queue.setWakeUp([&] { isScheduled.set_value(); });
  CurlURLSession session(configurationFor(server->port()), &queue);
  auto token = session.downloadTask(requestTo("https://api.test/"), [](const DownloadResult&) { ADD_FAILURE(); });
  isScheduled.get_future().wait();
  EXPECT_EQ(temporaryFileCount(), 1u);
  token.cancel();
  queue.runDue();
  EXPECT_EQ(temporaryFileCount(), 0u) << "nobody took the file";
}

TEST_F(CancelTest, CompletesOrCancelsEachOfMany) {
  constexpr int kCount = 200;
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  auto session = sessionFor(*server);
  const auto witness = std::make_shared<int>();
  std::atomic<int> callCount = 0;
  CountDown keptOnes(kCount / 2);
  std::mutex mutex;
  std::vector<reactive::AnyCancellable> tokens;
  std::vector<reactive::AnyCancellable> keptTokens;
  std::atomic<int> cancelledCount = 0;
  std::thread canceller([&] {
    std::minstd_rand random(1);
    while (cancelledCount < kCount / 2) {
      reactive::AnyCancellable token;
      {
        const std::lock_guard lock(mutex);
        if (tokens.empty()) continue;
        std::swap(tokens[random() % tokens.size()], tokens.back());
        token = std::move(tokens.back());
        tokens.pop_back();
      }
      for (auto spins = random() % 20000; spins > 0 && !token.isDone(); --spins) {
      }
      token.cancel();
      ++cancelledCount;
    }
  });
  for (int i = 0; i < kCount; ++i) {
    const bool isKept = i % 2 == 0;
    auto token =
        session->dataTask(requestTo("https://api.test/"), [&, isKept, held = witness](const DataResult& result) {
          EXPECT_EQ(textOf(result), "x");
          ++callCount;
          if (isKept) keptOnes.count();
        });
    const std::lock_guard lock(mutex);
    (isKept ? keptTokens : tokens).push_back(std::move(token));
  }
  canceller.join();
  EXPECT_TRUE(keptOnes.wait());
  EXPECT_EQ(textOf(fetch(*session, requestTo("https://api.test/"))), "x");
  session.reset();
  EXPECT_EQ(witness.use_count(), 1);
  EXPECT_GE(callCount, kCount / 2);
  EXPECT_LE(callCount, kCount);
}

/// Begins more tasks than run at once, of which none is answered; each counts its `cancelled`.
std::vector<reactive::AnyCancellable> beginMany(CurlURLSession& session, std::atomic<int>& cancelledCount) {
  std::vector<reactive::AnyCancellable> tokens;
  for (int i = 0; i < 100; ++i) {
    tokens.push_back(session.dataTask(requestTo("https://api.test/"), [&](const DataResult& result) {
      if (labelOf(result) == "cancelled") ++cancelledCount;
    }));
  }
  return tokens;
}

TEST_F(CancelTest, EndsAllTasksWithTheSession) {
  CountDown someCame(10);
  const auto server = serve([&](LoopbackConnection& connection, int) {
    connection.readRequest();
    someCame.count();
    connection.waitForEnd();
  });
  std::atomic<int> cancelledCount = 0;
  auto session = sessionFor(*server);
  auto tokens = beginMany(*session, cancelledCount);
  EXPECT_TRUE(someCame.wait());
  session.reset();
  EXPECT_EQ(cancelledCount, 100) << "before the destructor returns";
  tokens.clear();

  reactive::MainQueue queue;
  cancelledCount = 0;
  session = std::make_unique<CurlURLSession>(configurationFor(server->port()), &queue);
  tokens = beginMany(*session, cancelledCount);
  session.reset();
  EXPECT_EQ(cancelledCount, 0);
  queue.runDue();
  EXPECT_EQ(cancelledCount, 100);
}

TEST_F(CancelTest, LetsASessionGoInItsOwnCompletion) {
  const auto server = serve([](LoopbackConnection& connection, int index) {
    connection.readRequest();
    if (index == 0) connection.send(answerOf("x"));
    connection.waitForEnd();
  });
  auto session = sessionFor(*server);
  std::promise<std::string> first;
  std::promise<std::string> second;
  reactive::AnyCancellable other;
  const auto token = session->dataTask(requestTo("https://api.test/"), [&](const DataResult& result) {
    other = session->dataTask(requestTo("https://api.test/"),
                              [&](const DataResult& last) { second.set_value(labelOf(last)); });
    session.reset();
    first.set_value(textOf(result));
  });
  EXPECT_EQ(await(first.get_future()), "x");
  EXPECT_EQ(await(second.get_future()), "cancelled");
}

}  // namespace
}  // namespace kestrom::networking

#include "Platform/Reactive/SerialQueue.hpp"
#include "Tests/Platform/Networking/SessionTest.hpp"

#include <atomic>
#include <optional>
#include <thread>
#include <vector>

namespace kestrom::networking {
namespace {

using tests::answerOf;
using tests::LoopbackConnection;
using tests::LoopbackServer;

/// A session without a delegate queue whose thread an idle main queue relieves.
class IdleQueueTest : public SessionTest {
 protected:
  std::unique_ptr<CurlURLSession> relievedSessionFor(const LoopbackServer& server) {
    return std::make_unique<CurlURLSession>(configurationFor(server.port()), nullptr, hasNetworkInterface, &_queue);
  }

  /// Runs `work` on the main queue and waits for it.
  template <class Work>
  void onQueue(Work work) {
    std::promise<void> isDone;
    _queue.schedule([&] {
      work();
      isDone.set_value();
    });
    await(isDone.get_future());
  }

  /// Fetches from the main queue, comes back to it with the answer, and tells on which thread the completion ran.
  std::thread::id fetchOnce(CurlURLSession& session) {
    std::promise<std::thread::id> thread;
    reactive::AnyCancellable token;
    onQueue([&] {
      token = session.dataTask(requestTo("https://api.test/"), [&](const DataResult& result) {
        EXPECT_EQ(labelOf(result), "200");
        _queue.schedule([&, id = std::this_thread::get_id()] { thread.set_value(id); });
      });
    });
    return await(thread.get_future());
  }

  /// Fetches until the idle queue has taken over, as it does once an answer has woken it.
  void settle(CurlURLSession& session) {
    std::thread::id queueThread;
    onQueue([&] { queueThread = std::this_thread::get_id(); });
    for (int i = 0; i < 10'000; ++i) {
      if (fetchOnce(session) == queueThread) return;
    }
    FAIL() << "the queue never waits for the session";
  }

  reactive::SerialQueue _queue{"test-main"};
};

TEST_F(IdleQueueTest, WaitsForTheSession) {
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  const auto session = relievedSessionFor(*server);
  settle(*session);
  // From any other thread too.
  EXPECT_EQ(textOf(fetch(*session, requestTo("https://api.test/"))), "x");
}

TEST_F(IdleQueueTest, LeavesTheSessionToItsThreadWhileItIsBusy) {
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  const auto session = relievedSessionFor(*server);
  settle(*session);
  onQueue([&] { EXPECT_EQ(textOf(fetch(*session, requestTo("https://api.test/"))), "x"); });
  settle(*session);
}

TEST_F(IdleQueueTest, HasNothingToDoWithFilesAndLargeAnswers) {
  const std::string large(200'000, 'l');
  const auto server = serve(LoopbackServer::answering(answerOf(large)));
  const auto session = relievedSessionFor(*server);
  std::thread::id queueThread;
  onQueue([&] { queueThread = std::this_thread::get_id(); });
  for (int i = 0; i < 50; ++i) {
    std::promise<void> areDone;
    std::atomic<int> left = 3;
    const auto check = [&](const std::string& label) {
      EXPECT_EQ(label, "200");
      EXPECT_NE(std::this_thread::get_id(), queueThread);
      if (--left == 0) areDone.set_value();
    };
    std::vector<reactive::AnyCancellable> tokens;
    onQueue([&] {
      const URLRequest request = postTo("https://api.test/", "");
      tokens.push_back(session->dataTask(request, [&](const DataResult& result) { check(labelOf(result)); }));
      tokens.push_back(session->downloadTask(request, [&](const DownloadResult& result) { check(labelOf(result)); }));
      tokens.push_back(session->uploadTask(request, writeFile("upload", "u"),
                                           [&](const DataResult& result) { check(labelOf(result)); }));
    });
    await(areDone.get_future());
  }
}

TEST_F(IdleQueueTest, WakesForItsOwnWork) {
  const auto server = serve([](LoopbackConnection& connection, int index) {
    for (int answered = 0; index > 0 || answered < 1'000; ++answered) {
      if (!connection.readRequest()) return;
      connection.send(answerOf("x"));
    }
    connection.waitForEnd();
  });
  const auto session = relievedSessionFor(*server);
  settle(*session);
  // It waits in the session now, for a connection on which nothing comes.
  for (int i = 0; i < 1'000; ++i) onQueue([] {});
  // Time too: a timer of the queue ends a wait without anybody's call.
  std::promise<void> isOver;
  const auto token = _queue.scheduleAfter(std::chrono::milliseconds(5), [&] { isOver.set_value(); });
  await(isOver.get_future());
}

TEST_F(IdleQueueTest, OutlivesTheSession) {
  const auto server = serve([](LoopbackConnection& connection, int) {
    while (const auto request = connection.readRequest()) {
      if (request->head.starts_with("GET /never")) return connection.waitForEnd();
      connection.send(answerOf("x"));
    }
  });
  for (int i = 0; i < 20; ++i) {
    auto session = relievedSessionFor(*server);
    settle(*session);
    switch (i % 3) {
      case 0:
        session.reset();
        break;
      case 1:
        onQueue([&] { session.reset(); });
        break;
      default: {
        // Within a completion, wherever that runs; another task ends with the session.
        std::promise<std::string> label;
        reactive::AnyCancellable first;
        reactive::AnyCancellable second;
        onQueue([&] {
          first = session->dataTask(requestTo("https://api.test/"), [&](const DataResult&) {
            second = session->dataTask(requestTo("https://api.test/never"),
                                       [&](const DataResult& result) { label.set_value(labelOf(result)); });
            session.reset();
          });
        });
        EXPECT_EQ(await(label.get_future()), "cancelled");
      }
    }
    onQueue([] {});
  }
}

TEST_F(IdleQueueTest, LosesNothingUnderManyTasksFromManyThreads) {
  const auto server = serve(LoopbackServer::answering(answerOf("x")));
  const auto session = relievedSessionFor(*server);
  constexpr int kThreads = 3;
  constexpr int kCount = 100;
  CountDown all(kThreads * kCount / 2);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      std::vector<reactive::AnyCancellable> kept;
      for (int i = 0; i < kCount; ++i) {
        const bool isKept = i % 2 == 0;
        auto token = session->dataTask(requestTo("https://api.test/"), [&, isKept](const DataResult& result) {
          EXPECT_EQ(textOf(result), "x");
          _queue.schedule([&, isKept] {
            if (isKept) all.count();
          });
        });
        if (isKept) kept.push_back(std::move(token));
      }
      EXPECT_TRUE(all.wait());
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace kestrom::networking

#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Networking/CurlEasyHandle.hpp"
#include "Platform/Networking/CurlExchange.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/KeptConnections.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"
#include "Platform/Networking/SessionTask.hpp"
#include "Platform/Networking/SocketWatch.hpp"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kestrom::networking {

/// Runs all exchanges of a session. One thread, that of `run`, waits for all of them; whoever starts a task while that
/// thread waits puts its request on its way himself, since waking a thread takes longer than sending a small request.
/// Owned by the session and by the thread.
class CurlLoop {
 public:
  /// Completions run on `delegateQueue`, or on the loop's own thread when it is null.
  CurlLoop(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue, NetworkProbe hasNetwork);
  CurlLoop(const CurlLoop&) = delete;
  CurlLoop& operator=(const CurlLoop&) = delete;
  ~CurlLoop();

  /// Takes a task up. Any thread; does not wait for others.
  void start(reactive::Ref<SessionTask> task);
  /// Ends the exchange of a task that is cancelled. Any thread.
  void drop(reactive::Ref<SessionTask> task);
  /// Has `run` end all tasks with `cancelled` and return. Nothing is started any more. Any thread.
  void stop();

  void run();

 private:
  struct Inbox {
    std::vector<reactive::Ref<SessionTask>> started;
    std::vector<reactive::Ref<SessionTask>> dropped;
    bool isStopping = false;
  };
  struct CleanUpMulti {
    void operator()(void* handle) const;
  };
  struct Callbacks;
  using Finished = std::vector<std::pair<reactive::Ref<SessionTask>, SessionTask::Outcome>>;

  bool startHere(reactive::Ref<SessionTask>& task);
  template <class Change>
  void post(Change change);
  bool takeInbox();
  void dropTask(const SessionTask& task);
  void startWaiting();
  void begin(reactive::Ref<SessionTask> task);
  void transfer();
  void transferOn(int socket, SocketWatch::Interest ready, bool hasFailed);
  void takeFinished();
  void endOverdue();
  void finish(CurlExchange* exchange, SessionTask::Outcome outcome);
  reactive::Ref<SessionTask> abandon(CurlExchange* exchange);
  reactive::Ref<SessionTask> end(CurlExchange* exchange);
  CurlEasyHandle idleHandle();
  void deliver(Finished finished);
  std::optional<reactive::TimePoint> nextDue() const;
  void cancelAll();

  const CurlSessionConfiguration _configuration;
  reactive::Scheduler* const _delegateQueue;
  const NetworkProbe _hasNetwork;
  SocketWatch _watch;

  std::mutex _inboxMutex;
  Inbox _inbox;

  // Guarded by the mutex, libcurl's handles among it: whoever holds it drives the exchanges.
  std::mutex _driving;
  std::unique_ptr<void, CleanUpMulti> _multi;
  /// When libcurl wants to be called though nothing has come.
  std::optional<reactive::TimePoint> _timerDue;
  /// When the loop's thread wakes up by itself; absent: never.
  std::optional<reactive::TimePoint> _sleepsUntil;
  std::deque<reactive::Ref<SessionTask>> _waiting;
  std::vector<std::unique_ptr<CurlExchange>> _running;
  std::vector<CurlEasyHandle> _idleHandles;
  KeptConnections _keptConnections{_watch};
  Finished _finished;
};

}  // namespace kestrom::networking

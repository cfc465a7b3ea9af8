#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Networking/CurlEasyHandle.hpp"
#include "Platform/Networking/CurlExchange.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"
#include "Platform/Networking/SessionTask.hpp"

#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kestrom::networking {

/// Runs all exchanges of a session on the thread that calls `run`. Owned by the session and by that thread.
class CurlLoop {
 public:
  /// Completions run on `delegateQueue`, or on the loop's own thread when it is null.
  CurlLoop(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue, NetworkProbe hasNetwork);
  CurlLoop(const CurlLoop&) = delete;
  CurlLoop& operator=(const CurlLoop&) = delete;
  ~CurlLoop();

  /// Takes a task up. Any thread.
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

  template <class Change>
  void post(Change change);
  bool takeInbox();
  void dropTask(const SessionTask& task);
  void startWaiting();
  void begin(reactive::Ref<SessionTask> task);
  void transfer();
  void endOverdue();
  void finish(CurlExchange* exchange, SessionTask::Outcome outcome);
  reactive::Ref<SessionTask> end(CurlExchange* exchange);
  CurlEasyHandle idleHandle();
  void deliver();
  void wait();
  void cancelAll();

  const CurlSessionConfiguration _configuration;
  reactive::Scheduler* const _delegateQueue;
  const NetworkProbe _hasNetwork;

  // Guarded by the mutex. The handle itself belongs to the loop's thread; others only wake it up.
  std::mutex _mutex;
  Inbox _inbox;
  std::unique_ptr<void, CleanUpMulti> _multi;

  // Used by the loop's thread only.
  std::deque<reactive::Ref<SessionTask>> _waiting;
  std::vector<std::unique_ptr<CurlExchange>> _running;
  std::vector<CurlEasyHandle> _idleHandles;
  std::vector<std::pair<reactive::Ref<SessionTask>, SessionTask::Outcome>> _finished;
};

}  // namespace kestrom::networking

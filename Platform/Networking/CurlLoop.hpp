#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Networking/CurlEasyHandle.hpp"
#include "Platform/Networking/CurlExchange.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/DriverSeat.hpp"
#include "Platform/Networking/KeptConnections.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"
#include "Platform/Networking/SessionTask.hpp"
#include "Platform/Networking/SocketWatch.hpp"
#include "Platform/Reactive/WaitingPlace.hpp"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace kestrom::networking {

/// Runs all exchanges of a session. A thread of its own, that of `run`, waits for all of them, unless the main queue's
/// does so while it is idle; whoever starts a task while somebody waits puts its request on its way himself. Both are
/// there because waking a thread takes longer than sending a small request. Whatever touches files or large answers is
/// the own thread's. Owned by the session and by the thread.
class CurlLoop final : public reactive::WaitingPlace {
 public:
  /// Completions run on `delegateQueue`, or, when it is null, one after the other on the thread that waits.
  CurlLoop(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue, NetworkProbe hasNetwork);
  CurlLoop(const CurlLoop&) = delete;
  CurlLoop& operator=(const CurlLoop&) = delete;
  ~CurlLoop() override;

  /// False when the system has not given what it takes, descriptors for one: then nothing else may be called.
  bool isUsable() const { return _multi != nullptr; }
  static URLError unusableError();

  /// Takes a task up. Any thread; does not wait for others.
  void start(reactive::Ref<SessionTask> task);
  /// Ends the exchange of a task that is cancelled. Any thread.
  void drop(reactive::Ref<SessionTask> task);
  /// Has `run` end all tasks with `cancelled` and return, and the main queue wait elsewhere. Nothing is started any
  /// more. Any thread.
  void stop();
  /// From now on nobody calls libcurl for this loop any more; what it has stays as it is, and tasks end no more. For
  /// the end of the process. Any thread.
  void freeze();

  void run();

  // The main queue's thread.
  bool wait(std::optional<reactive::Duration> duration) override;
  void wake() override;

 private:
  struct Inbox {
    std::vector<reactive::Ref<SessionTask>> started;
    std::vector<reactive::Ref<SessionTask>> dropped;
    bool isStopping = false;
  };
  struct CleanUpMulti {
    void operator()(void* handle) const;
  };
  struct FreeList {
    void operator()(curl_slist* list) const;
  };
  struct Callbacks;
  using Finished = std::vector<std::pair<reactive::Ref<SessionTask>, SessionTask::Outcome>>;

  enum class Driver : std::uint8_t { owner, guest };
  /// What one round of driving has left.
  struct Round {
    Finished finished;
    /// Until when nothing need be done unless something comes.
    std::optional<reactive::TimePoint> sleepsUntil;
    bool isRunning = false;
    bool isForOwner = false;
  };

  bool startHere(reactive::Ref<SessionTask>& task);
  template <class Change>
  void post(Change change);
  std::optional<Round> drive(Driver driver);
  bool takeInbox();
  bool isForOwner() const;
  void sleep(std::optional<reactive::TimePoint> until);
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
  /// In libcurl's form.
  std::unique_ptr<curl_slist, FreeList> _connectTo;
  SocketWatch _watch;
  DriverSeat _seat;

  std::mutex _inboxMutex;
  Inbox _inbox;

  // Guarded by the mutex, libcurl's handles among it: whoever holds it drives the exchanges.
  std::mutex _driving;
  std::unique_ptr<void, CleanUpMulti> _multi;
  bool _isFrozen = false;
  /// When libcurl wants to be called though nothing has come.
  std::optional<reactive::TimePoint> _timerDue;
  /// When the thread that waits wakes up by itself; absent: never.
  std::optional<reactive::TimePoint> _sleepsUntil;
  /// Whether a thread waits, or is about to, for no longer than that.
  bool _isAwaited = false;
  std::deque<reactive::Ref<SessionTask>> _waiting;
  std::vector<std::unique_ptr<CurlExchange>> _running;
  std::vector<CurlEasyHandle> _idleHandles;
  KeptConnections _keptConnections{_watch};
  Finished _finished;
};

}  // namespace kestrom::networking

#include "Platform/Networking/CurlLoop.hpp"

#include "Kestrom/Platform/MainQueue.hpp"
#include "Platform/Networking/LiveLoops.hpp"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <new>

namespace kestrom::networking {

namespace {

/// How many exchanges run at once; the others wait for their turn, and their time with them. Each may have a connection
/// of its own, and an application gets a few hundred descriptors for all that it does.
constexpr std::size_t kMaximumRunning = 64;

/// A larger answer takes time to read, which the main queue's thread has not.
constexpr std::uint64_t kLargeAnswerSize = 64 * 1024;

/// Far from where adding it to the present would overflow.
constexpr std::chrono::hours kLongestSleep{1};

/// libcurl asks to be prepared once for the process, before it is used by threads.
CURLcode prepareLibrary() {
  static const CURLcode result = [] {
    const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
    live_loops::freezeAtExit();
    return prepared;
  }();
  return result;
}

CurlExchange* exchangeOf(CURL* handle) {
  char* exchange = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &exchange);
  return reinterpret_cast<CurlExchange*>(exchange);
}

/// Opening and reading files takes as long as the disk likes.
bool touchesFile(const SessionTask& task) {
  return task.file() || task.isDownload();
}

}  // namespace

void CurlLoop::CleanUpMulti::operator()(void* handle) const {
  curl_multi_cleanup(handle);
}

void CurlLoop::FreeList::operator()(curl_slist* list) const {
  curl_slist_free_all(list);
}

/// What libcurl calls while somebody drives it.
struct CurlLoop::Callbacks {
  static int onSocket(CURL* handle, curl_socket_t socket, int what, void* object, void*) noexcept {
    CurlLoop& loop = *static_cast<CurlLoop*>(object);
    if (what == CURL_POLL_REMOVE) {
      // A socket that did not connect is closed by now.
      loop._watch.pause(socket);
    } else {
      const SocketWatch::Interest interest{(what & CURL_POLL_IN) != 0, (what & CURL_POLL_OUT) != 0};
      loop._keptConnections.watch(socket, interest, exchangeOf(handle));
    }
    return 0;
  }

  static int onTimer(CURLM*, long milliseconds, void* object) noexcept {
    auto& due = static_cast<CurlLoop*>(object)->_timerDue;
    due.reset();
    if (milliseconds >= 0) due = reactive::steadyNow() + std::chrono::milliseconds(milliseconds);
    return 0;
  }
};

CurlLoop::CurlLoop(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue, NetworkProbe hasNetwork)
    : _configuration(std::move(configuration)), _delegateQueue(delegateQueue), _hasNetwork(std::move(hasNetwork)) {
  live_loops::add(*this);
  if (prepareLibrary() == CURLE_OK && _watch.isUsable()) _multi.reset(curl_multi_init());
  if (!_multi) return;
  CURLM* const multi = _multi.get();
  if (_configuration.connectTo) {
    const auto& [host, port] = *_configuration.connectTo;
    _connectTo.reset(curl_slist_append(nullptr, ("::" + host + ":" + std::to_string(port)).c_str()));
    if (!_connectTo) {
      _multi.reset();
      return;
    }
  }
  // Exchanges that run together have a connection each, over HTTP/2 too: libcurl 7.88, which is in use, now and then
  // leaves the end of an answer lying in a connection that several of them share.
  curl_multi_setopt(multi, CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_NOTHING));
  // Connections that idle count too, and are closed for new ones.
  curl_multi_setopt(multi, CURLMOPT_MAX_TOTAL_CONNECTIONS, static_cast<long>(kMaximumRunning));
  curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &Callbacks::onSocket);
  curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &Callbacks::onTimer);
  curl_multi_setopt(multi, CURLMOPT_TIMERDATA, this);
}

CurlLoop::~CurlLoop() {
  live_loops::remove(*this);
  if (!_isFrozen) return;
  // Whoever may clean these up is gone; the process takes them with it.
  for (auto& exchange : _running) static_cast<void>(exchange.release());
  for (CurlEasyHandle& handle : _idleHandles) static_cast<void>(handle.release());
  static_cast<void>(_multi.release());
}

void CurlLoop::freeze() {
  const std::lock_guard driving(_driving);
  _isFrozen = true;
}

URLError CurlLoop::unusableError() {
  return {URLError::Code::unknown, "The network library cannot be used"};
}

void CurlLoop::start(reactive::Ref<SessionTask> task) {
  if (touchesFile(*task)) {
    post([&] { _inbox.started.push_back(std::move(task)); });
    _seat.returnToOwner();
    return;
  }
  if (!startHere(task)) post([&] { _inbox.started.push_back(std::move(task)); });
  _seat.need();
}

void CurlLoop::drop(reactive::Ref<SessionTask> task) {
  post([&] { _inbox.dropped.push_back(std::move(task)); });
  _seat.need();
}

void CurlLoop::stop() {
  {
    const std::lock_guard lock(_inboxMutex);
    _inbox.isStopping = true;
  }
  // Who is woken after this finds the seat closed.
  _seat.close();
  _watch.wake();
}

template <class Change>
void CurlLoop::post(Change change) {
  {
    const std::lock_guard lock(_inboxMutex);
    change();
  }
  _watch.wake();
}

/// Puts a task on its way on the calling thread, if nobody drives at this moment.
bool CurlLoop::startHere(reactive::Ref<SessionTask>& task) {
  const std::unique_lock driving(_driving, std::try_to_lock);
  if (!driving || _isFrozen || !_multi || !_waiting.empty() || _running.size() >= kMaximumRunning) return false;
  begin(std::move(task));
  transfer();
  const auto due = nextDue();
  const bool isSooner = due && (!_sleepsUntil || *due < *_sleepsUntil);
  if (isSooner) _sleepsUntil = due;
  // What is over already is told by who waits.
  if (_isAwaited && (isSooner || !_finished.empty())) _watch.wake();
  return true;
}

void CurlLoop::run() {
  while (true) {
    _seat.await();
    auto round = drive(Driver::owner);
    if (!round) break;
    const bool wakesGuest = !round->finished.empty() && !round->isForOwner;
    deliver(std::move(round->finished));
    if (wakesGuest && _seat.giveAway()) continue;
    sleep(round->sleepsUntil);
  }
  // A loop that was frozen has nothing more to do but to be there for its session's end.
  _seat.awaitClose();
  cancelAll();
}

bool CurlLoop::wait(std::optional<reactive::Duration> duration) {
  switch (_seat.enter()) {
    case DriverSeat::Entry::refused:
      return false;
    case DriverSeat::Entry::called:
      return true;
    case DriverSeat::Entry::entered:
      break;
  }
  std::optional<reactive::TimePoint> until;
  if (duration) until = reactive::steadyNow() + std::min<reactive::Duration>(*duration, kLongestSleep);
  {
    const std::lock_guard driving(_driving);
    _isAwaited = true;
    if (!_finished.empty()) until = reactive::steadyNow();
    if (_sleepsUntil && (!until || *_sleepsUntil < *until)) until = _sleepsUntil;
  }
  sleep(until);
  auto round = drive(Driver::guest);
  const bool isRunning = round && round->isRunning;
  if (round) deliver(std::move(round->finished));
  _seat.leave(isRunning);
  return true;
}

void CurlLoop::wake() {
  if (_seat.call()) _watch.wake();
}

void CurlLoop::sleep(std::optional<reactive::TimePoint> until) {
  std::optional<std::chrono::milliseconds> duration;
  if (until) {
    const auto left = std::max(*until - reactive::steadyNow(), reactive::Duration(0));
    duration = std::chrono::ceil<std::chrono::milliseconds>(left);
  }
  _watch.wait(duration);
}

/// Does all that can be done without waiting. Absent when the loop is to end.
std::optional<CurlLoop::Round> CurlLoop::drive(Driver driver) {
  const std::lock_guard driving(_driving);
  _isAwaited = false;
  if (_isFrozen || !takeInbox()) return std::nullopt;
  // First what has come, then the deadlines: an application that was asleep, or a completion that took its time, must
  // not end exchanges whose bytes are there.
  _watch.drain([this](int socket, void* exchange, SocketWatch::Interest ready, bool hasFailed) {
    // Bytes of any kind: a slow handshake or half a header line are no silence.
    if (exchange) static_cast<CurlExchange*>(exchange)->noteActivity();
    transferOn(socket, ready, hasFailed);
  });
  Round round;
  round.isForOwner = isForOwner();
  if (driver == Driver::guest && round.isForOwner) {
    _seat.returnToOwner();
    return round;
  }
  startWaiting();
  transfer();
  endOverdue();
  round.isForOwner = isForOwner();
  if (driver == Driver::guest && round.isForOwner) {
    _seat.returnToOwner();
    return round;
  }
  round.finished = std::exchange(_finished, {});
  round.isRunning = !_running.empty() || !_waiting.empty();
  // A sleep is not made longer for what has ended, so that the next task seldom needs to make it shorter.
  const reactive::TimePoint now = reactive::steadyNow();
  const auto due = nextDue();
  if (!_sleepsUntil || *_sleepsUntil <= now || (due && *due < *_sleepsUntil)) _sleepsUntil = due;
  // What has ended makes room.
  if (!_waiting.empty() && _running.size() < kMaximumRunning) _sleepsUntil = now;
  round.sleepsUntil = _sleepsUntil;
  _isAwaited = driver == Driver::owner;
  return round;
}

/// False when the loop is to end.
bool CurlLoop::takeInbox() {
  Inbox inbox;
  {
    const std::lock_guard lock(_inboxMutex);
    std::swap(inbox.started, _inbox.started);
    std::swap(inbox.dropped, _inbox.dropped);
    inbox.isStopping = _inbox.isStopping;
  }
  std::ranges::move(inbox.started, std::back_inserter(_waiting));
  for (const auto& task : inbox.dropped) dropTask(*task);
  return !inbox.isStopping;
}

/// Whether there is something that only the loop's own thread may do.
bool CurlLoop::isForOwner() const {
  const auto isLarge = [](const Finished::value_type& finished) {
    return finished.second && finished.second->content.size() > kLargeAnswerSize;
  };
  return std::ranges::any_of(_running, [](const auto& exchange) { return touchesFile(exchange->task()); }) ||
         std::ranges::any_of(_waiting, [](const auto& task) { return touchesFile(*task); }) ||
         std::ranges::any_of(_finished, isLarge);
}

void CurlLoop::dropTask(const SessionTask& task) {
  const auto running = std::ranges::find_if(_running, [&](const auto& exchange) { return &exchange->task() == &task; });
  if (running != _running.end()) {
    abandon(running->get());
  } else {
    std::erase_if(_waiting, [&](const auto& waiting) { return waiting.get() == &task; });
  }
}

void CurlLoop::startWaiting() {
  while (!_waiting.empty() && _running.size() < kMaximumRunning) {
    reactive::Ref<SessionTask> task = std::move(_waiting.front());
    _waiting.pop_front();
    if (!task->isDone()) begin(std::move(task));
  }
}

void CurlLoop::begin(reactive::Ref<SessionTask> task) {
  _keptConnections.endStale();
  CurlEasyHandle handle = idleHandle();
  if (!handle) {
    _finished.emplace_back(std::move(task), std::unexpected(unusableError()));
    return;
  }
  CurlExchange* const exchange =
      _running.emplace_back(std::make_unique<CurlExchange>(std::move(task), std::move(handle), _keptConnections)).get();
  if (auto prepared = exchange->prepare(_configuration); !prepared) {
    finish(exchange, std::unexpected(std::move(prepared.error())));
  } else if (curl_multi_add_handle(_multi.get(), exchange->handle()) != CURLM_OK) {
    finish(exchange, std::unexpected(unusableError()));
  }
}

CurlEasyHandle CurlLoop::idleHandle() {
  if (_idleHandles.empty()) return CurlExchange::makeHandle(_configuration, _connectTo.get(), _keptConnections);
  CurlEasyHandle handle = std::move(_idleHandles.back());
  _idleHandles.pop_back();
  return handle;
}

/// Does what libcurl can do now without waiting.
void CurlLoop::transfer() {
  // It asks to be called again and again, mostly at once, until there is nothing to do but to wait; the bound is there
  // because nobody promises that.
  for (int round = 0; round < 100 && _timerDue && *_timerDue <= reactive::steadyNow(); ++round) {
    _timerDue.reset();
    int count = 0;
    curl_multi_socket_action(_multi.get(), CURL_SOCKET_TIMEOUT, 0, &count);
  }
  takeFinished();
}

void CurlLoop::transferOn(int socket, SocketWatch::Interest ready, bool hasFailed) {
  const int what = (ready.isForReading ? CURL_CSELECT_IN : 0) | (ready.isForWriting ? CURL_CSELECT_OUT : 0) |
                   (hasFailed ? CURL_CSELECT_ERR : 0);
  int count = 0;
  curl_multi_socket_action(_multi.get(), socket, what, &count);
}

void CurlLoop::takeFinished() {
  int count = 0;
  while (const CURLMsg* message = curl_multi_info_read(_multi.get(), &count)) {
    if (message->msg != CURLMSG_DONE) continue;
    CurlExchange* const exchange = exchangeOf(message->easy_handle);
    // The message goes with the handle.
    const CURLcode result = message->data.result;
    finish(exchange, exchange->takeOutcome(result, _hasNetwork));
  }
}

void CurlLoop::endOverdue() {
  const reactive::TimePoint now = reactive::steadyNow();
  // From the end, since finishing takes the exchange out.
  for (std::size_t index = _running.size(); index-- > 0;) {
    CurlExchange* const exchange = _running[index].get();
    if (exchange->deadline() > now) continue;
    _finished.emplace_back(abandon(exchange),
                           std::unexpected(URLError{URLError::Code::timedOut, "Nothing came or went for too long"}));
  }
}

void CurlLoop::finish(CurlExchange* exchange, SessionTask::Outcome outcome) {
  _finished.emplace_back(end(exchange), std::move(outcome));
}

/// Gives up an exchange that is not over.
reactive::Ref<SessionTask> CurlLoop::abandon(CurlExchange* exchange) {
  // libcurl closes a socket that has not connected yet before it tells.
  _watch.removeAll(exchange);
  return end(exchange);
}

reactive::Ref<SessionTask> CurlLoop::end(CurlExchange* exchange) {
  // Closes the connection unless the exchange is whole; does nothing for a handle that was not added.
  curl_multi_remove_handle(_multi.get(), exchange->handle());
  // Mostly none is left.
  _watch.removeAll(exchange);
  _idleHandles.push_back(exchange->releaseHandle());
  reactive::Ref<SessionTask> task = exchange->takeTask();
  std::erase_if(_running, [&](const auto& running) { return running.get() == exchange; });
  return task;
}

void CurlLoop::deliver(Finished finished) {
  for (auto& entry : finished) {
    if (!_delegateQueue) {
      entry.first->complete(std::move(entry.second));
      continue;
    }
    _delegateQueue->schedule([task = std::move(entry.first), outcome = std::move(entry.second)]() mutable {
      task->complete(std::move(outcome));
    });
  }
}

/// When there is something to do though nothing comes.
std::optional<reactive::TimePoint> CurlLoop::nextDue() const {
  std::optional<reactive::TimePoint> due = _timerDue;
  for (const auto& exchange : _running) {
    const reactive::TimePoint deadline = exchange->deadline();
    if (!due || deadline < *due) due = deadline;
  }
  return due;
}

void CurlLoop::cancelAll() {
  Finished finished;
  {
    const std::lock_guard driving(_driving);
    if (_isFrozen) return;
    const URLError error{URLError::Code::cancelled, "The session has ended"};
    while (!_running.empty()) _finished.emplace_back(abandon(_running.back().get()), std::unexpected(error));
    for (auto& task : std::exchange(_waiting, {})) _finished.emplace_back(std::move(task), std::unexpected(error));
    finished = std::exchange(_finished, {});
    _idleHandles.clear();
    // Here, because closing its connections writes to them.
    _multi.reset();
  }
  deliver(std::move(finished));
}

}  // namespace kestrom::networking

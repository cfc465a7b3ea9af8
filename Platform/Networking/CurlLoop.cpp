#include "Platform/Networking/CurlLoop.hpp"

#include "Kestrom/Platform/MainQueue.hpp"

#include <curl/curl.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <new>

namespace kestrom::networking {

namespace {

/// How many exchanges run at once; the others wait for their turn, and their time with them. Each may have a connection
/// of its own, and an application gets a few hundred descriptors for all that it does.
constexpr std::size_t kMaximumRunning = 64;

/// libcurl asks to be prepared once for the process, before it is used by threads.
CURLcode prepareLibrary() {
  static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
  return result;
}

/// A connection that the server has closed must not end the process when the TLS library writes to it.
void blockBrokenPipeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

CurlExchange* exchangeOf(CURL* handle) {
  char* exchange = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &exchange);
  return reinterpret_cast<CurlExchange*>(exchange);
}

URLError errorOfLibrary() {
  return {URLError::Code::unknown, "The network library cannot be used"};
}

}  // namespace

void CurlLoop::CleanUpMulti::operator()(void* handle) const {
  curl_multi_cleanup(handle);
}

CurlLoop::CurlLoop(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue, NetworkProbe hasNetwork)
    : _configuration(std::move(configuration)), _delegateQueue(delegateQueue), _hasNetwork(std::move(hasNetwork)) {
  if (prepareLibrary() == CURLE_OK) _multi.reset(curl_multi_init());
  if (!_multi) throw std::bad_alloc();
  // Exchanges that run together have a connection each, over HTTP/2 too: libcurl 7.88, which is in use, now and then
  // leaves the end of an answer lying in a connection that several of them share.
  curl_multi_setopt(_multi.get(), CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_NOTHING));
  // Connections that idle count too, and are closed for new ones.
  curl_multi_setopt(_multi.get(), CURLMOPT_MAX_TOTAL_CONNECTIONS, static_cast<long>(kMaximumRunning));
}

CurlLoop::~CurlLoop() = default;

void CurlLoop::start(reactive::Ref<SessionTask> task) {
  post([&] { _inbox.started.push_back(std::move(task)); });
}

void CurlLoop::drop(reactive::Ref<SessionTask> task) {
  post([&] { _inbox.dropped.push_back(std::move(task)); });
}

void CurlLoop::stop() {
  post([&] { _inbox.isStopping = true; });
}

template <class Change>
void CurlLoop::post(Change change) {
  const std::lock_guard lock(_mutex);
  // A token may outlive the session.
  if (!_multi) return;
  change();
  curl_multi_wakeup(_multi.get());
}

void CurlLoop::run() {
  blockBrokenPipeSignal();
  while (takeInbox()) {
    startWaiting();
    // First what has come, then the deadlines: an application that was asleep, or a completion that took its time, must
    // not end exchanges whose bytes are there.
    transfer();
    endOverdue();
    deliver();
    wait();
  }
  cancelAll();
  _idleHandles.clear();
  // Here, because closing its connections writes to them.
  const std::lock_guard lock(_mutex);
  _multi.reset();
}

/// False when the loop is to end.
bool CurlLoop::takeInbox() {
  Inbox inbox;
  {
    const std::lock_guard lock(_mutex);
    std::swap(inbox.started, _inbox.started);
    std::swap(inbox.dropped, _inbox.dropped);
    inbox.isStopping = _inbox.isStopping;
  }
  std::ranges::move(inbox.started, std::back_inserter(_waiting));
  for (const auto& task : inbox.dropped) dropTask(*task);
  return !inbox.isStopping;
}

void CurlLoop::dropTask(const SessionTask& task) {
  const auto running = std::ranges::find_if(_running, [&](const auto& exchange) { return &exchange->task() == &task; });
  if (running != _running.end()) {
    end(running->get());
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
  CurlEasyHandle handle = idleHandle();
  if (!handle) {
    _finished.emplace_back(std::move(task), std::unexpected(errorOfLibrary()));
    return;
  }
  CurlExchange* const exchange =
      _running.emplace_back(std::make_unique<CurlExchange>(std::move(task), std::move(handle))).get();
  if (auto prepared = exchange->prepare(_configuration); !prepared) {
    finish(exchange, std::unexpected(std::move(prepared.error())));
  } else if (curl_multi_add_handle(_multi.get(), exchange->handle()) != CURLM_OK) {
    finish(exchange, std::unexpected(errorOfLibrary()));
  }
}

CurlEasyHandle CurlLoop::idleHandle() {
  if (_idleHandles.empty()) return CurlEasyHandle(curl_easy_init());
  CurlEasyHandle handle = std::move(_idleHandles.back());
  _idleHandles.pop_back();
  return handle;
}

void CurlLoop::transfer() {
  int count = 0;
  curl_multi_perform(_multi.get(), &count);
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
    finish(exchange, std::unexpected(URLError{URLError::Code::timedOut, "Nothing came or went for too long"}));
  }
}

void CurlLoop::finish(CurlExchange* exchange, SessionTask::Outcome outcome) {
  _finished.emplace_back(end(exchange), std::move(outcome));
}

/// Gives the exchange up, whether it is whole or not.
reactive::Ref<SessionTask> CurlLoop::end(CurlExchange* exchange) {
  // Closes the connection unless the exchange is whole; does nothing for a handle that was not added.
  curl_multi_remove_handle(_multi.get(), exchange->handle());
  _idleHandles.push_back(exchange->releaseHandle());
  reactive::Ref<SessionTask> task = exchange->takeTask();
  std::erase_if(_running, [&](const auto& running) { return running.get() == exchange; });
  return task;
}

void CurlLoop::deliver() {
  for (auto& finished : std::exchange(_finished, {})) {
    if (!_delegateQueue) {
      finished.first->complete(std::move(finished.second));
      continue;
    }
    _delegateQueue->schedule([task = std::move(finished.first), outcome = std::move(finished.second)]() mutable {
      task->complete(std::move(outcome));
    });
  }
}

void CurlLoop::wait() {
  // Exchanges that ended have made room for others.
  if (!_waiting.empty() && _running.size() < kMaximumRunning) return;
  // An hour is for ever here: whatever happens wakes it up.
  std::chrono::milliseconds duration = std::chrono::hours(1);
  const reactive::TimePoint now = reactive::steadyNow();
  for (const auto& exchange : _running) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(exchange->deadline() - now);
    duration = std::clamp(left, std::chrono::milliseconds(0), duration);
  }
  curl_multi_poll(_multi.get(), nullptr, 0, static_cast<int>(duration.count()), nullptr);
}

void CurlLoop::cancelAll() {
  const URLError error{URLError::Code::cancelled, "The session has ended"};
  while (!_running.empty()) finish(_running.front().get(), std::unexpected(error));
  for (auto& task : std::exchange(_waiting, {})) _finished.emplace_back(std::move(task), std::unexpected(error));
  deliver();
}

}  // namespace kestrom::networking

#include "Platform/Networking/SocketWatch.hpp"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace kestrom::networking {

SocketWatch::SocketWatch() : _poll(::epoll_create1(EPOLL_CLOEXEC)), _signal(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!isUsable()) return;
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = _signal;
  ::epoll_ctl(_poll, EPOLL_CTL_ADD, _signal, &event);
}

SocketWatch::~SocketWatch() {
  if (_poll >= 0) ::close(_poll);
  if (_signal >= 0) ::close(_signal);
}

void SocketWatch::set(int socket, Interest interest, void* owner, bool isSame) {
  const auto index = static_cast<std::size_t>(socket);
  if (index >= _sockets.size()) _sockets.resize(index + 1);
  const Watched before = std::exchange(_sockets[index], Watched{State::active, interest, owner});
  const bool isKnown = before.state != State::unknown;
  if (isKnown && isSame && before.interest == interest) return;
  epoll_event event{};
  event.events = (interest.isForReading ? EPOLLIN : 0u) | (interest.isForWriting ? EPOLLOUT : 0u);
  event.data.fd = socket;
  // The system has forgotten a socket that was closed.
  if (isKnown && ::epoll_ctl(_poll, EPOLL_CTL_MOD, socket, &event) == 0) return;
  ::epoll_ctl(_poll, EPOLL_CTL_ADD, socket, &event);
}

void SocketWatch::pause(int socket) {
  if (isActive(socket)) _sockets[static_cast<std::size_t>(socket)].state = State::paused;
}

void SocketWatch::remove(int socket) {
  const auto index = static_cast<std::size_t>(socket);
  if (index >= _sockets.size() || std::exchange(_sockets[index].state, State::unknown) == State::unknown) return;
  epoll_event ignored{};
  ::epoll_ctl(_poll, EPOLL_CTL_DEL, socket, &ignored);
}

void SocketWatch::removeAll(void* owner) {
  for (std::size_t index = 0; index < _sockets.size(); ++index) {
    if (_sockets[index].state == State::active && _sockets[index].owner == owner) remove(static_cast<int>(index));
  }
}

bool SocketWatch::isActive(int socket) const {
  const auto index = static_cast<std::size_t>(socket);
  return index < _sockets.size() && _sockets[index].state == State::active;
}

void SocketWatch::wake() {
  if (_isSignalled.exchange(true)) return;
  const std::uint64_t one = 1;
  // It fails only when it is already set as often as it can be.
  static_cast<void>(::write(_signal, &one, sizeof one));
}

void SocketWatch::wait(std::optional<std::chrono::milliseconds> duration) {
  epoll_event events[kMaximumEvents];
  const int timeout = duration ? static_cast<int>(std::min<std::int64_t>(duration->count(), 60'000)) : -1;
  // A signal ends it early, which is no harm.
  const int count = ::epoll_wait(_poll, events, kMaximumEvents, timeout);
  _eventCount = 0;
  for (int index = 0; index < count; ++index) {
    if (events[index].data.fd == _signal) {
      std::uint64_t wakes = 0;
      static_cast<void>(::read(_signal, &wakes, sizeof wakes));
      // After reading: who finds it set until here is heard, since what he wants is looked at after the wait.
      _isSignalled.exchange(false);
    } else {
      _events[_eventCount++] = {events[index].data.fd, events[index].events};
    }
  }
}

void SocketWatch::drain(const OnReady& onReady) {
  for (int index = 0; index < _eventCount; ++index) {
    const auto [socket, what] = _events[index];
    const Watched watched = _sockets[static_cast<std::size_t>(socket)];
    switch (watched.state) {
      case State::active:
        onReady(socket, watched.owner, {(what & EPOLLIN) != 0, (what & EPOLLOUT) != 0},
                (what & (EPOLLERR | EPOLLHUP)) != 0);
        break;
      case State::paused:
        // The system would tell it again and again.
        remove(socket);
        break;
      case State::unknown:
        // It was closed since.
        break;
    }
  }
  _eventCount = 0;
}

}  // namespace kestrom::networking

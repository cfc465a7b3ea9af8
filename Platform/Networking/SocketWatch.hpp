#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>

namespace kestrom::networking {

/// Waits for bytes on many sockets and for a call from elsewhere. One thread waits; changing what is watched and waking
/// are for any thread, also while it waits, but changes come one after the other.
class SocketWatch {
 public:
  struct Interest {
    bool isForReading = false;
    bool isForWriting = false;
  };
  /// `hasFailed`: the connection is broken or at its end.
  using OnReady = std::function<void(int socket, Interest ready, bool hasFailed)>;

  SocketWatch();
  ~SocketWatch();
  SocketWatch(const SocketWatch&) = delete;
  SocketWatch& operator=(const SocketWatch&) = delete;

  /// Whether the system has given what it takes.
  bool isUsable() const { return _poll >= 0 && _signal >= 0; }

  /// Watches a socket, or changes what for. A socket that is closed is watched no more.
  void set(int socket, Interest interest);
  void remove(int socket);

  /// Lets a wait end, or the next one at once.
  void wake();

  /// Waits until something happens or the time is over; absent: for ever. What has happened is then told by `drain`.
  void wait(std::optional<std::chrono::milliseconds> duration);
  /// Tells what the last wait found.
  void drain(const OnReady& onReady);

 private:
  static constexpr int kMaximumEvents = 64;
  struct Event {
    int socket;
    std::uint32_t what;
  };

  int _poll;
  int _signal;
  std::set<int> _sockets;
  // Of the thread that waits.
  Event _events[kMaximumEvents];
  int _eventCount = 0;
};

}  // namespace kestrom::networking

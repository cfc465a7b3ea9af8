#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace kestrom::networking {

/// Waits for bytes on many sockets and for a call from elsewhere. One thread waits; changing what is watched and waking
/// are for any thread, also while it waits, but changes come one after the other.
class SocketWatch {
 public:
  struct Interest {
    bool isForReading = false;
    bool isForWriting = false;

    friend bool operator==(Interest, Interest) = default;
  };
  /// `hasFailed`: the connection is broken or at its end.
  using OnReady = std::function<void(int socket, void* owner, Interest ready, bool hasFailed)>;

  SocketWatch();
  ~SocketWatch();
  SocketWatch(const SocketWatch&) = delete;
  SocketWatch& operator=(const SocketWatch&) = delete;

  /// Whether the system has given what it takes.
  bool isUsable() const { return _poll >= 0 && _signal >= 0; }

  /// Watches a socket for an owner, or changes what for. `isSame`: unless it was removed, the number still stands for
  /// the socket that it stood for before; such a one is mostly watched again at no cost.
  void set(int socket, Interest interest, void* owner, bool isSame);
  /// Tells nothing more of a socket for now. It may be closed already, and its number be somebody else's.
  void pause(int socket);
  /// To be called before a socket is closed.
  void remove(int socket);
  /// Removes the sockets that are watched for an owner, who goes.
  void removeAll(void* owner);

  bool isActive(int socket) const;

  /// Lets a wait end, or the next one at once.
  void wake();

  /// Waits until something happens or the time is over; absent: for ever. What has happened is then told by `drain`.
  void wait(std::optional<std::chrono::milliseconds> duration);
  /// Tells what the last wait found.
  void drain(const OnReady& onReady);

 private:
  static constexpr int kMaximumEvents = 64;
  enum class State : std::uint8_t { unknown, active, paused };
  struct Watched {
    State state = State::unknown;
    Interest interest;
    void* owner = nullptr;
  };
  struct Event {
    int socket;
    std::uint32_t what;
  };

  int _poll;
  int _signal;
  std::atomic<bool> _isSignalled = false;
  /// By the socket's number.
  std::vector<Watched> _sockets;
  // Of the thread that waits.
  Event _events[kMaximumEvents];
  int _eventCount = 0;
};

}  // namespace kestrom::networking

#pragma once

#include "Apps/sandbox/ConnectionHandler.hpp"
#include "Apps/sandbox/StopSignal.hpp"
#include "Apps/sandbox/TLSConnection.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace kestrom::sandbox {

/// Listens on 127.0.0.1 and serves each client on a thread of its own, until the process is told to end.
class SandboxServer {
 public:
  /// Clients that are served at once; others wait.
  static constexpr std::size_t kMaximumClients = 256;

  /// Clients can connect from now on. Port 0 is any that is free. Takes over SIGTERM and SIGINT of the process, so that
  /// it must be called before any other thread is there.
  static std::expected<std::unique_ptr<SandboxServer>, std::string> listen(std::uint16_t port);

  SandboxServer(const SandboxServer&) = delete;
  SandboxServer& operator=(const SandboxServer&) = delete;
  ~SandboxServer();

  std::uint16_t port() const { return _port; }
  const StopSignal& stopSignal() const { return _stop; }

  /// Serves until SIGTERM or SIGINT; requests under way are answered before it returns.
  void run(const TLSContext& tls, const ConnectionContext& context);

 private:
  struct Client {
    int socket;
    bool isDone = false;
    std::thread thread;
  };

  SandboxServer(int listener, int signals, int doneEvent, std::uint16_t port)
      : _listener(listener), _signals(signals), _doneEvent(doneEvent), _port(port) {}

  void acceptClient(const TLSContext& tls, const ConnectionContext& context);
  void serve(Client& client, const TLSContext& tls, const ConnectionContext& context);
  void joinDone();
  void stop();

  int _listener;
  int _signals;
  /// Counts the clients that are done, for the thread that joins them.
  int _doneEvent;
  std::uint16_t _port;
  StopSignal _stop;
  std::mutex _mutex;
  std::list<Client> _clients;
  /// The last client could not be accepted for want of descriptors or memory.
  bool _isShort = false;
};

}  // namespace kestrom::sandbox

#pragma once

#include "Platform/Networking/SocketWatch.hpp"

#include <poll.h>

#include <vector>

namespace kestrom::networking {

/// The connections that libcurl keeps for later requests. Servers end them after a while, by a last TLS message and
/// then the end of the stream; libcurl looks at the first byte only, takes the connection for alive and loses the next
/// request on it. It would send that request again by itself, which a session does not let it, so what has gone stale
/// must be gone before. Used by whoever drives the exchanges.
class KeptConnections {
 public:
  /// `watch` outlives it.
  explicit KeptConnections(SocketWatch& watch) : _watch(watch) {}

  /// A connection that has served an exchange; libcurl may use it again.
  void keep(int socket);

  /// libcurl waits for something on the socket.
  void watch(int socket, SocketWatch::Interest interest, void* exchange);
  /// Closes a socket of libcurl's.
  int close(int socket);

  /// Has libcurl find those ended on which something came though no exchange uses them.
  void endStale();

 private:
  SocketWatch& _watch;
  std::vector<int> _sockets;
  /// What the system is asked about, kept for its memory.
  std::vector<pollfd> _questions;
};

}  // namespace kestrom::networking

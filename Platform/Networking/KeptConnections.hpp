#pragma once

#include <span>
#include <vector>

namespace kestrom::networking {

/// The connections that libcurl keeps for later requests. Servers end them after a while, by a last TLS message and
/// then the end of the stream; libcurl looks at the first byte only, takes the connection for alive and loses the next
/// request on it. It would send that request again by itself, which a session does not let it, so what has gone stale
/// must be gone before. Used by whoever drives the exchanges.
class KeptConnections {
 public:
  /// A connection that has served an exchange, whether or not it already serves another.
  void keep(int socket);
  /// The socket is about to be closed.
  void forget(int socket);

  /// Has libcurl find those ended on which something came though no exchange uses them. Those in use are told by their
  /// local ports.
  void endStale(std::span<const int> localPortsInUse);

 private:
  struct Connection {
    int socket;
    int localPort;
  };

  std::vector<Connection> _connections;
};

}  // namespace kestrom::networking

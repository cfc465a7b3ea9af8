#pragma once

#include "Tests/Support/LoopbackCertificates.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using SSL = struct ssl_st;
using SSL_CTX = struct ssl_ctx_st;

namespace kestrom::tests {

/// What a server saw of one request.
struct LoopbackRequest {
  /// The request line and the headers, without the empty line behind them.
  std::string head;
  std::string body;
};

class LoopbackServer;

/// A TLS connection of a `LoopbackServer`, used by the thread that serves it.
class LoopbackConnection {
 public:
  LoopbackConnection(LoopbackServer& server, SSL* ssl, int socket) : _server(server), _ssl(ssl), _socket(socket) {}

  /// The next request up to its end as Content-Length has it; absent when the client is gone.
  std::optional<LoopbackRequest> readRequest();
  /// The next request's head alone.
  std::optional<std::string> readHead();
  /// Some bytes, as they come; empty when the client is gone.
  std::string readSome();
  /// False when the client is gone.
  bool send(std::string_view bytes);
  /// Waits until the client has ended the connection.
  void waitForEnd();
  /// Does nothing for so long, or until the client ends the connection.
  void pause(std::chrono::milliseconds duration);
  /// Ends the stream as TLS wants it; without it a connection is just cut when its script returns.
  void closeProperly();
  /// Sends the end of the stream, and nothing more.
  void endStream();
  /// Cuts the connection by a reset instead of an end, when its script returns.
  void reset();

 private:
  std::string receive();

  LoopbackServer& _server;
  SSL* _ssl;
  int _socket;
  std::string _unread;
};

/// An HTTPS server on the loopback that does what a test tells it, connection by connection, each on its own thread.
class LoopbackServer {
 public:
  /// Serves one connection; `index` counts them from 0. When it returns the connection is cut.
  using Script = std::function<void(LoopbackConnection& connection, int index)>;

  LoopbackServer(const LoopbackCertificate& certificate, Script script);
  ~LoopbackServer();

  /// A script that answers every request alike, on as many connections as come.
  static Script answering(std::string answer);

  std::uint16_t port() const { return _port; }
  int connectionCount() const;
  /// All requests that scripts read whole, in that order.
  std::vector<LoopbackRequest> requests() const;

 private:
  struct Client {
    int socket;
    std::thread thread;
  };

  void accept();
  void serve(int socket, int index);

  const Script _script;
  SSL_CTX* const _context;
  const int _listener;
  std::uint16_t _port = 0;
  mutable std::mutex _mutex;
  std::list<Client> _clients;
  std::vector<LoopbackRequest> _requests;
  bool _isStopping = false;
  std::thread _thread;

  friend class LoopbackConnection;
};

/// An answer with a length: status line, Content-Length, further headers (each with its line end), content.
std::string answerOf(std::string_view content, std::string_view status = "200 OK", std::string_view headers = "");

/// A socket that listens on the loopback. The system takes connections up there even if nobody else does.
int listenOnLoopback(int backlog = 128);
std::uint16_t portOf(int socket);

}  // namespace kestrom::tests

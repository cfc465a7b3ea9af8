#include "Apps/sandbox/SandboxServer.hpp"

#include "Apps/sandbox/HTTPConnection.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <csignal>

#include <iostream>
#include <system_error>
#include <utility>

namespace kestrom::sandbox {

namespace {

/// A client that says nothing for that long is taken for gone.
constexpr timeval kReadPatience{.tv_sec = 120, .tv_usec = 0};
constexpr timeval kWritePatience{.tv_sec = 30, .tv_usec = 0};

/// A socket that listens, and its port; a negative one when the port is not to be had.
std::pair<int, std::uint16_t> listeningSocket(std::uint16_t port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const int on = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(listener, SOMAXCONN) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    if (listener >= 0) ::close(listener);
    return {-1, 0};
  }
  return {listener, ntohs(address.sin_port)};
}

}  // namespace

std::expected<std::unique_ptr<SandboxServer>, std::string> SandboxServer::listen(std::uint16_t port) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGINT);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  // Clients that go away are told by the write, not by a signal.
  std::signal(SIGPIPE, SIG_IGN);

  const auto [listener, boundPort] = listeningSocket(port);
  if (listener < 0) return std::unexpected("cannot listen on 127.0.0.1:" + std::to_string(port));
  const int signals = signalfd(-1, &set, SFD_CLOEXEC);
  const int doneEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  return std::unique_ptr<SandboxServer>(new SandboxServer(listener, signals, doneEvent, boundPort));
}

SandboxServer::~SandboxServer() {
  ::close(_listener);
  ::close(_signals);
  ::close(_doneEvent);
}

void SandboxServer::run(const TLSContext& tls, const ConnectionContext& context) {
  while (true) {
    // poll passes over negative descriptors.
    const bool isFull = _clients.size() >= kMaximumClients;
    const bool isListening = !isFull && !std::exchange(_isShort, false);
    pollfd watched[] = {{_signals, POLLIN, 0}, {_doneEvent, POLLIN, 0}, {isListening ? _listener : -1, POLLIN, 0}};
    // What the system is short of may come back without anybody's telling.
    constexpr int kPauseInMilliseconds = 100;
    if (poll(watched, std::size(watched), isListening || isFull ? -1 : kPauseInMilliseconds) < 0) continue;
    if (watched[0].revents != 0) break;
    if (watched[1].revents != 0) joinDone();
    if (watched[2].revents != 0) acceptClient(tls, context);
  }
  stop();
}

void SandboxServer::acceptClient(const TLSContext& tls, const ConnectionContext& context) {
  const int socket = accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
  if (socket < 0) {
    _isShort = errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
    return;
  }
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &kReadPatience, sizeof kReadPatience);
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &kWritePatience, sizeof kWritePatience);

  const std::lock_guard lock(_mutex);
  Client& client = _clients.emplace_back();
  client.socket = socket;
  try {
    client.thread = std::thread([this, &client, &tls, &context] { serve(client, tls, context); });
  } catch (const std::system_error&) {
    // The system has no thread left: as if the server were full.
    ::close(socket);
    _clients.pop_back();
  }
}

void SandboxServer::serve(Client& client, const TLSContext& tls, const ConnectionContext& context) {
  const int socket = client.socket;
  try {
    TLSConnection stream(tls, socket);
    if (stream.accept()) {
      HTTPConnection connection(stream);
      ConnectionHandler(connection, context).run();
    }
  } catch (const std::exception& error) {
    std::cerr << "kestrom-sandbox: " << error.what() << '\n';
  }
  {
    const std::lock_guard lock(_mutex);
    ::close(socket);
    client.socket = -1;
    client.isDone = true;
  }
  eventfd_write(_doneEvent, 1);
}

void SandboxServer::joinDone() {
  eventfd_t count;
  eventfd_read(_doneEvent, &count);
  std::list<Client> done;
  {
    const std::lock_guard lock(_mutex);
    for (auto it = _clients.begin(); it != _clients.end();) {
      const auto client = it++;
      if (client->isDone) done.splice(done.end(), _clients, client);
    }
  }
  for (Client& client : done) client.thread.join();
}

void SandboxServer::stop() {
  _stop.raise();
  {
    // Whoever waits for a next request sees the end of the connection; answers still go out.
    const std::lock_guard lock(_mutex);
    for (const Client& client : _clients) {
      if (client.socket >= 0) shutdown(client.socket, SHUT_RD);
    }
  }
  for (Client& client : _clients) client.thread.join();
  _clients.clear();
}

}  // namespace kestrom::sandbox

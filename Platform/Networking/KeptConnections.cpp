#include "Platform/Networking/KeptConnections.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace kestrom::networking {

namespace {

void end(int socket) {
  // What has come would look like life, so it is taken away.
  std::array<char, 4096> bytes;
  while (::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
  }
  ::shutdown(socket, SHUT_RDWR);
}

}  // namespace

void KeptConnections::keep(int socket) {
  if (std::ranges::find(_sockets, socket) == _sockets.end()) _sockets.push_back(socket);
}

void KeptConnections::watch(int socket, SocketWatch::Interest interest, void* exchange) {
  // Of other sockets it is not told here when they are closed.
  const bool isKnown = std::ranges::find(_sockets, socket) != _sockets.end();
  _watch.set(socket, interest, exchange, isKnown);
}

int KeptConnections::close(int socket) {
  std::erase(_sockets, socket);
  _watch.remove(socket);
  return ::close(socket);
}

void KeptConnections::endStale() {
  _questions.clear();
  for (const int socket : _sockets) {
    if (!_watch.isActive(socket)) _questions.push_back({socket, POLLIN, 0});
  }
  if (_questions.empty() || ::poll(_questions.data(), _questions.size(), 0) <= 0) return;
  for (const pollfd& answer : _questions) {
    if (answer.revents != 0) end(answer.fd);
  }
}

}  // namespace kestrom::networking

#include "Platform/Networking/KeptConnections.hpp"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestrom::networking {

namespace {

int localPortOf(int socket) {
  sockaddr_in6 address{};
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  // The port stands at the same place in an address of IPv4.
  static_assert(offsetof(sockaddr_in6, sin6_port) == offsetof(sockaddr_in, sin_port));
  return ntohs(address.sin6_port);
}

bool hasInput(int socket) {
  pollfd events{socket, POLLIN, 0};
  return ::poll(&events, 1, 0) > 0;
}

void end(int socket) {
  // What has come would look like life, so it is taken away.
  std::array<char, 4096> bytes;
  while (::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
  }
  ::shutdown(socket, SHUT_RDWR);
}

}  // namespace

void KeptConnections::keep(int socket) {
  forget(socket);
  _connections.push_back({socket, localPortOf(socket)});
}

void KeptConnections::forget(int socket) {
  std::erase_if(_connections, [&](const Connection& connection) { return connection.socket == socket; });
}

void KeptConnections::endStale(std::span<const int> localPortsInUse) {
  for (const Connection& connection : _connections) {
    const bool isInUse = std::ranges::find(localPortsInUse, connection.localPort) != localPortsInUse.end();
    if (!isInUse && hasInput(connection.socket)) end(connection.socket);
  }
}

}  // namespace kestrom::networking

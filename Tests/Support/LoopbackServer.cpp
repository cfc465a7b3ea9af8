#include "Tests/Support/LoopbackServer.hpp"

#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace kestrom::tests {

namespace {

constexpr std::string_view kEndOfHead = "\r\n\r\n";

std::size_t contentLengthOf(const std::string& head) {
  constexpr std::string_view kName = "\r\nContent-Length: ";
  const std::size_t start = head.find(kName);
  return start == std::string::npos ? 0 : std::stoul(head.substr(start + kName.size()));
}

/// A client that is gone must not end the test when the TLS library writes to it.
void blockBrokenPipeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

std::optional<std::string> LoopbackConnection::readHead() {
  std::size_t end = _unread.find(kEndOfHead);
  while (end == std::string::npos) {
    const std::string more = receive();
    if (more.empty()) return std::nullopt;
    _unread += more;
    end = _unread.find(kEndOfHead);
  }
  std::string head = _unread.substr(0, end);
  _unread.erase(0, end + kEndOfHead.size());
  return head;
}

std::optional<LoopbackRequest> LoopbackConnection::readRequest() {
  auto head = readHead();
  if (!head) return std::nullopt;
  const std::size_t length = contentLengthOf(*head);
  while (_unread.size() < length) {
    const std::string more = receive();
    if (more.empty()) return std::nullopt;
    _unread += more;
  }
  LoopbackRequest request{std::move(*head), _unread.substr(0, length)};
  _unread.erase(0, length);
  const std::lock_guard lock(_server._mutex);
  _server._requests.push_back(request);
  return request;
}

std::string LoopbackConnection::readSome() {
  return _unread.empty() ? receive() : std::exchange(_unread, {});
}

std::string LoopbackConnection::receive() {
  std::string bytes(16 << 10, '\0');
  const int count = SSL_read(_ssl, bytes.data(), static_cast<int>(bytes.size()));
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

bool LoopbackConnection::send(std::string_view bytes) {
  return SSL_write(_ssl, bytes.data(), static_cast<int>(bytes.size())) > 0;
}

void LoopbackConnection::waitForEnd() {
  while (!readSome().empty()) {
  }
}

void LoopbackConnection::pause(std::chrono::milliseconds duration) {
  pollfd events{_socket, POLLRDHUP, 0};
  ::poll(&events, 1, static_cast<int>(duration.count()));
}

void LoopbackConnection::closeProperly() {
  SSL_shutdown(_ssl);
}

void LoopbackConnection::endStream() {
  ::shutdown(_socket, SHUT_WR);
}

void LoopbackConnection::reset() {
  const linger atOnce{1, 0};
  ::setsockopt(_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

int listenOnLoopback(int backlog) {
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::listen(listener, backlog);
  return listener;
}

std::uint16_t portOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

LoopbackServer::LoopbackServer(const LoopbackCertificate& certificate, Script script)
    : _script(std::move(script)),
      _context(SSL_CTX_new(TLS_server_method())),
      _listener(listenOnLoopback()),
      _port(portOf(_listener)) {
  SSL_CTX_use_certificate(_context, certificate.certificate.get());
  SSL_CTX_use_PrivateKey(_context, certificate.key.get());
  _thread = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
  {
    const std::lock_guard lock(_mutex);
    _isStopping = true;
    for (const Client& client : _clients) {
      if (client.socket >= 0) ::shutdown(client.socket, SHUT_RDWR);
    }
  }
  ::shutdown(_listener, SHUT_RDWR);
  _thread.join();
  for (Client& client : _clients) client.thread.join();
  ::close(_listener);
  SSL_CTX_free(_context);
}

LoopbackServer::Script LoopbackServer::answering(std::string answer) {
  return [answer = std::move(answer)](LoopbackConnection& connection, int) {
    while (connection.readRequest() && connection.send(answer)) {
    }
  };
}

int LoopbackServer::connectionCount() const {
  const std::lock_guard lock(_mutex);
  return static_cast<int>(_clients.size());
}

std::vector<LoopbackRequest> LoopbackServer::requests() const {
  const std::lock_guard lock(_mutex);
  return _requests;
}

void LoopbackServer::accept() {
  while (true) {
    const int socket = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
    const std::lock_guard lock(_mutex);
    if (_isStopping) {
      if (socket >= 0) ::close(socket);
      return;
    }
    if (socket < 0) continue;
    Client& client = _clients.emplace_back(socket, std::thread());
    client.thread = std::thread([this, &client, index = static_cast<int>(_clients.size()) - 1] {
      serve(client.socket, index);
      const std::lock_guard done(_mutex);
      ::close(std::exchange(client.socket, -1));
    });
  }
}

void LoopbackServer::serve(int socket, int index) {
  blockBrokenPipeSignal();
  SSL* const ssl = SSL_new(_context);
  SSL_set_fd(ssl, socket);
  if (SSL_accept(ssl) == 1) {
    LoopbackConnection connection(*this, ssl, socket);
    _script(connection, index);
  }
  SSL_free(ssl);
}

std::string answerOf(std::string_view content, std::string_view status, std::string_view headers) {
  std::string answer = "HTTP/1.1 ";
  answer.append(status).append("\r\nContent-Length: ").append(std::to_string(content.size())).append("\r\n");
  return answer.append(headers).append("\r\n").append(content);
}

}  // namespace kestrom::tests

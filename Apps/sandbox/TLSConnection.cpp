#include "Apps/sandbox/TLSConnection.hpp"

#include <linux/sockios.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <climits>

namespace kestrom::sandbox {

namespace {

/// Clients that can speak HTTP/2 too are told that this server does not.
int chooseProtocol(SSL*, const unsigned char** out, unsigned char* outLength, const unsigned char* in,
                   unsigned inLength, void*) {
  static constexpr unsigned char kProtocols[] = {8, 'h', 't', 't', 'p', '/', '1', '.', '1'};
  unsigned char* chosen = nullptr;
  if (SSL_select_next_proto(&chosen, outLength, kProtocols, sizeof kProtocols, in, inLength) != OPENSSL_NPN_NEGOTIATED)
    return SSL_TLSEXT_ERR_NOACK;
  *out = chosen;
  return SSL_TLSEXT_ERR_OK;
}

int atMostInt(std::size_t size) {
  return static_cast<int>(std::min<std::size_t>(size, INT_MAX));
}

}  // namespace

std::expected<TLSContext, std::string> TLSContext::load(const std::filesystem::path& certificate,
                                                        const std::filesystem::path& key) {
  std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  if (!context) return std::unexpected("TLS is not available");
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  SSL_CTX_set_mode(context.get(), SSL_MODE_AUTO_RETRY);
  SSL_CTX_set_alpn_select_cb(context.get(), chooseProtocol, nullptr);
  if (SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) != 1 ||
      SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) != 1) {
    ERR_clear_error();
    return std::unexpected("the server's certificate cannot be used: " + certificate.string());
  }
  return TLSContext(std::move(context));
}

void TLSConnection::Release::operator()(ssl_st* connection) const {
  SSL_free(connection);
}

TLSConnection::TLSConnection(const TLSContext& context, int socket)
    : _connection(SSL_new(context.get())), _socket(socket) {
  if (_connection) SSL_set_fd(_connection.get(), socket);
}

bool TLSConnection::accept() {
  ERR_clear_error();
  return _connection && SSL_accept(_connection.get()) == 1;
}

std::expected<std::size_t, TLSConnection::ReadError> TLSConnection::read(std::span<std::uint8_t> buffer) {
  ERR_clear_error();
  const int count = SSL_read(_connection.get(), buffer.data(), atMostInt(buffer.size()));
  if (count > 0) return static_cast<std::size_t>(count);
  const bool ended = SSL_get_error(_connection.get(), count) == SSL_ERROR_ZERO_RETURN;
  return std::unexpected(ended ? ReadError::ended : ReadError::failed);
}

bool TLSConnection::write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    ERR_clear_error();
    const int count = SSL_write(_connection.get(), bytes.data(), atMostInt(bytes.size()));
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

void TLSConnection::sayGoodbye() {
  ERR_clear_error();
  SSL_shutdown(_connection.get());
}

void TLSConnection::drain() {
  constexpr int kMaximumRounds = 5000;
  for (int round = 0; round < kMaximumRounds; ++round) {
    int waiting = 0;
    if (ioctl(_socket, SIOCOUTQ, &waiting) != 0 || waiting == 0) return;
    poll(nullptr, 0, 1);
  }
}

void TLSConnection::resetOnClose() {
  const linger immediately{.l_onoff = 1, .l_linger = 0};
  setsockopt(_socket, SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
}

}  // namespace kestrom::sandbox

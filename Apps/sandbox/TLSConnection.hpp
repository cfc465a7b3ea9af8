#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

struct ssl_ctx_st;
struct ssl_st;

namespace kestrom::sandbox {

/// Certificate and key that every connection presents. Any thread.
class TLSContext {
 public:
  static std::expected<TLSContext, std::string> load(const std::filesystem::path& certificate,
                                                     const std::filesystem::path& key);

  ssl_ctx_st* get() const { return _context.get(); }

 private:
  explicit TLSContext(std::shared_ptr<ssl_ctx_st> context) : _context(std::move(context)) {}

  std::shared_ptr<ssl_ctx_st> _context;
};

/// The server's end of one connection, blocking, for one thread. Waits no longer than the socket's own time-outs.
class TLSConnection {
 public:
  /// `socket` stays the caller's and is open as long as this object lives.
  TLSConnection(const TLSContext& context, int socket);

  /// The handshake; false when the client does not come through it.
  bool accept();

  enum class ReadError : std::uint8_t { ended, failed };
  /// At least one byte.
  std::expected<std::size_t, ReadError> read(std::span<std::uint8_t> buffer);

  /// All bytes; false when the client is gone.
  bool write(std::span<const std::uint8_t> bytes);

  /// Tells the client that nothing more comes.
  void sayGoodbye();

  /// Waits until all that was written has reached the client's system, so that what happens to the connection then
  /// takes nothing back; at most some seconds.
  void drain();

  /// Makes the closing of the socket a reset.
  void resetOnClose();

  int socket() const { return _socket; }

 private:
  struct Release {
    void operator()(ssl_st* connection) const;
  };

  std::unique_ptr<ssl_st, Release> _connection;
  int _socket;
};

}  // namespace kestrom::sandbox

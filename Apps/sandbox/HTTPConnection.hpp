#pragma once

#include "Apps/sandbox/HTTPMessage.hpp"
#include "Apps/sandbox/TLSConnection.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace kestrom::sandbox {

/// Reads requests from and writes answers to one client, one after the other. For one thread.
class HTTPConnection {
 public:
  /// Bytes that a request's head may have.
  static constexpr std::size_t kMaximumHead = std::size_t{64} << 10;

  /// `stream` lives as long as this object.
  explicit HTTPConnection(TLSConnection& stream);
  ~HTTPConnection();

  enum class ReadError : std::uint8_t {
    closed,       ///< the client is gone, or said nothing for too long
    malformed,    ///< no HTTP
    headTooLarge  ///< more than `kMaximumHead`
  };

  /// Waits for the next request. The body of the one before has been read.
  std::expected<RequestHead, ReadError> readHead();

  /// Of a request that could not be read: what was understood before; the target is empty before a whole first line.
  RequestHead headSoFar() const;

  /// The next bytes of the body, the number of which is 0 at its end only. What came before an error comes before it.
  std::expected<std::size_t, ReadError> readBody(std::span<std::uint8_t> buffer);

  /// Asks a client that waits for it to send the body.
  bool sendContinue();

  /// Sends an answer whole; false when the client is gone or a file cannot be read.
  bool write(const Response& response, bool keepsAlive);

  /// Sends the head of an answer and half of its body; half of the head when there is no body to be cut.
  void writeHalf(const Response& response);

  bool writeRaw(std::string_view text);

  /// Ends the connection so that an answer reaches a client that is still sending.
  void closeAfterRefusal();

  TLSConnection& stream() { return _stream; }

 private:
  struct Reader;

  TLSConnection& _stream;
  std::unique_ptr<Reader> _reader;
  /// Of the body, behind bytes that were handed on.
  std::optional<ReadError> _bodyError;
};

}  // namespace kestrom::sandbox

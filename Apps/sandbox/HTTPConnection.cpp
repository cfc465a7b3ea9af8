#include "Apps/sandbox/HTTPConnection.hpp"

#include "Kestrom/Platform/Bytes.hpp"

#include <sys/socket.h>
#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <utility>

namespace kestrom::sandbox {

namespace {

namespace http = boost::beast::http;
using boost::beast::error_code;
using foundation::bytesOf;

/// The encrypted connection as the parser wants to read it.
class ReadStream {
 public:
  explicit ReadStream(TLSConnection& stream) : _stream(stream) {}

  template <class Buffers>
  std::size_t read_some(const Buffers& buffers, error_code& error) {
    for (auto it = boost::asio::buffer_sequence_begin(buffers); it != boost::asio::buffer_sequence_end(buffers); ++it) {
      const boost::asio::mutable_buffer buffer = *it;
      if (buffer.size() == 0) continue;
      const auto count = _stream.read({static_cast<std::uint8_t*>(buffer.data()), buffer.size()});
      error = count ? error_code{} : boost::asio::error::make_error_code(boost::asio::error::eof);
      return count.value_or(0);
    }
    error = {};
    return 0;
  }

  template <class Buffers>
  std::size_t read_some(const Buffers& buffers) {
    error_code error;
    const std::size_t count = read_some(buffers, error);
    if (error) throw boost::system::system_error(error);
    return count;
  }

 private:
  TLSConnection& _stream;
};

using Parser = http::request_parser<http::buffer_body>;

HTTPConnection::ReadError readError(const error_code& error) {
  if (error == http::error::header_limit) return HTTPConnection::ReadError::headTooLarge;
  if (error == boost::asio::error::eof || error == http::error::end_of_stream || error == http::error::partial_message)
    return HTTPConnection::ReadError::closed;
  return HTTPConnection::ReadError::malformed;
}

bool hasBody(unsigned status) {
  return status >= 200 && status != 204 && status != 304;
}

std::string headText(const Response& response, std::uint64_t length, bool keepsAlive) {
  std::string text = "HTTP/1.1 " + std::to_string(response.status) + ' ';
  text += reasonPhrase(response.status);
  text += "\r\n";
  if (hasBody(response.status)) {
    if (length > 0) text += "Content-Type: " + response.contentType + "\r\n";
    text += "Content-Length: " + std::to_string(length) + "\r\n";
  }
  for (const Header& header : response.headers) text += header.name + ": " + header.value + "\r\n";
  if (!keepsAlive) text += "Connection: close\r\n";
  text += "\r\n";
  return text;
}

/// Hands on at most `count` bytes of a file, piece by piece.
bool sendFile(TLSConnection& stream, std::ifstream& file, std::uint64_t count) {
  std::array<char, 65536> buffer;
  while (count > 0) {
    file.read(buffer.data(), static_cast<std::streamsize>(std::min<std::uint64_t>(count, buffer.size())));
    const auto read = static_cast<std::size_t>(file.gcount());
    if (read == 0 || !stream.write(bytesOf({buffer.data(), read}))) return false;
    count -= read;
  }
  return true;
}

}  // namespace

struct HTTPConnection::Reader {
  explicit Reader(TLSConnection& connection) : stream(connection) {}

  ReadStream stream;
  boost::beast::flat_buffer buffer{kMaximumHead * 2};
  std::unique_ptr<Parser> parser;
};

HTTPConnection::HTTPConnection(TLSConnection& stream) : _stream(stream), _reader(std::make_unique<Reader>(stream)) {}

HTTPConnection::~HTTPConnection() = default;

std::expected<RequestHead, HTTPConnection::ReadError> HTTPConnection::readHead() {
  _reader->parser = std::make_unique<Parser>();
  Parser& parser = *_reader->parser;
  parser.header_limit(kMaximumHead);
  // What is too much depends on the request, so that its reader counts.
  parser.body_limit(boost::none);
  error_code error;
  http::read_header(_reader->stream, _reader->buffer, parser, error);
  if (error) return std::unexpected(readError(error));

  RequestHead head = headSoFar();
  if (const auto length = parser.content_length()) head.contentLength = *length;
  head.expectsContinue = equalsIgnoringCase(head.header("Expect").value_or(""), "100-continue");
  head.isKeptAlive = parser.keep_alive();
  return head;
}

RequestHead HTTPConnection::headSoFar() const {
  const auto& message = _reader->parser->get();
  RequestHead head;
  head.method = std::string(message.method_string());
  head.target = std::string(message.target());
  for (const auto& field : message) {
    head.headers.push_back({std::string(field.name_string()), std::string(field.value())});
  }
  return head;
}

std::expected<std::size_t, HTTPConnection::ReadError> HTTPConnection::readBody(std::span<std::uint8_t> buffer) {
  if (_bodyError) return std::unexpected(*std::exchange(_bodyError, std::nullopt));
  Parser& parser = *_reader->parser;
  if (parser.is_done()) return 0;
  auto& body = parser.get().body();
  body.data = buffer.data();
  body.size = buffer.size();
  error_code error;
  http::read(_reader->stream, _reader->buffer, parser, error);
  const std::size_t count = buffer.size() - body.size;
  if (error && error != http::error::need_buffer) {
    if (count == 0) return std::unexpected(readError(error));
    _bodyError = readError(error);
  }
  return count;
}

bool HTTPConnection::sendContinue() {
  return writeRaw("HTTP/1.1 100 Continue\r\n\r\n");
}

bool HTTPConnection::write(const Response& response, bool keepsAlive) {
  if (!response.file) {
    std::string text = headText(response, response.body.size(), keepsAlive);
    if (hasBody(response.status)) text += response.body;
    return writeRaw(text);
  }
  std::ifstream file(*response.file, std::ios::binary | std::ios::ate);
  if (!file) return write(errorResponse(500, "the file cannot be read"), keepsAlive);
  const auto size = static_cast<std::uint64_t>(file.tellg());
  file.seekg(0);
  return writeRaw(headText(response, size, keepsAlive)) && sendFile(_stream, file, size);
}

void HTTPConnection::writeHalf(const Response& response) {
  std::ifstream file;
  std::uint64_t size = hasBody(response.status) ? response.body.size() : 0;
  if (response.file) {
    file.open(*response.file, std::ios::binary | std::ios::ate);
    size = file ? static_cast<std::uint64_t>(file.tellg()) : 0;
    file.seekg(0);
  }
  std::string text = headText(response, size, true);
  if (size < 2) {
    text.resize(text.size() / 2);
  } else if (!response.file) {
    text.append(response.body, 0, size / 2);
  }
  if (writeRaw(text) && response.file && size >= 2) sendFile(_stream, file, size / 2);
}

bool HTTPConnection::writeRaw(std::string_view text) {
  return _stream.write(bytesOf(text));
}

void HTTPConnection::closeAfterRefusal() {
  // Closing with bytes unread would be a reset, which can overtake the answer. So the client is told, and what it still
  // sends is thrown away for a while.
  _stream.sayGoodbye();
  shutdown(_stream.socket(), SHUT_WR);
  const timeval patience{.tv_sec = 1, .tv_usec = 0};
  setsockopt(_stream.socket(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  std::array<std::uint8_t, 65536> buffer;
  while (std::chrono::steady_clock::now() < end && recv(_stream.socket(), buffer.data(), buffer.size(), 0) > 0) {
  }
}

}  // namespace kestrom::sandbox

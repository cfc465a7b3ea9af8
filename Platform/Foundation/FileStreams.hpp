#pragma once

#include "Kestrom/Platform/FileError.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/PosixFile.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <utility>

namespace kestrom::foundation {

/// Bytes that come one after the other. One thread at a time. Reading what is not open is an error of kind `other`.
class InputStream {
 public:
  virtual ~InputStream() = default;

  virtual std::expected<void, FileError> open() = 0;

  /// The number of bytes read, at most the size of `buffer`; 0 at the end.
  virtual std::expected<std::size_t, FileError> read(std::span<std::uint8_t> buffer) = 0;

  virtual void close() = 0;
};

/// Takes bytes one after the other. One thread at a time. Writing to what is not open, and closing it, is an error of
/// kind `other`.
class OutputStream {
 public:
  virtual ~OutputStream() = default;

  virtual std::expected<void, FileError> open() = 0;

  /// The number of bytes written, which may be fewer than given.
  virtual std::expected<std::size_t, FileError> write(std::span<const std::uint8_t> bytes) = 0;

  /// Returns when all that was written is safe. A stream that is dropped without it gives no such promise.
  virtual std::expected<void, FileError> close() = 0;
};

/// The content of a file.
class FileInputStream final : public InputStream {
 public:
  explicit FileInputStream(URL url) : _url(std::move(url)) {}

  std::expected<void, FileError> open() override;
  std::expected<std::size_t, FileError> read(std::span<std::uint8_t> buffer) override;
  void close() override;

 private:
  URL _url;
  std::optional<PosixFile> _file;
};

/// Writes a file from its begin. One that stands there already loses its content when the stream opens; the directory
/// must exist. Once closed the file is on the disk; what a failure leaves of it stays.
class FileOutputStream final : public OutputStream {
 public:
  explicit FileOutputStream(URL url) : _url(std::move(url)) {}

  std::expected<void, FileError> open() override;
  std::expected<std::size_t, FileError> write(std::span<const std::uint8_t> bytes) override;
  std::expected<void, FileError> close() override;

 private:
  URL _url;
  std::optional<PosixFile> _file;
};

}  // namespace kestrom::foundation

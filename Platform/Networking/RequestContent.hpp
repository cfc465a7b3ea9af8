#pragma once

#include "Kestrom/Platform/URL.hpp"
#include "Kestrom/Platform/URLError.hpp"
#include "Platform/Foundation/PosixFile.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <span>

namespace kestrom::networking {

/// The content of a request, read piece by piece. One thread at a time.
class RequestContent {
 public:
  /// `bytes` must outlive it.
  explicit RequestContent(std::span<const std::uint8_t> bytes) : _bytes(bytes), _size(bytes.size()) {}

  /// The content that a regular file has now; what is added to the file later is left out.
  static std::expected<RequestContent, URLError> ofFile(const foundation::URL& url);

  std::uint64_t size() const { return _size; }
  /// All of it, when it lies in memory; null for a file's.
  const std::uint8_t* bytes() const { return _file ? nullptr : _bytes.data(); }

  /// Fills `buffer` as far as content is left and gives the number of bytes; fails when the file has become shorter.
  std::expected<std::size_t, URLError> read(std::span<std::uint8_t> buffer);

 private:
  RequestContent(foundation::PosixFile file, std::uint64_t size) : _file(std::move(file)), _size(size) {}

  std::span<const std::uint8_t> _bytes;
  std::optional<foundation::PosixFile> _file;
  std::uint64_t _size;
  std::uint64_t _position = 0;
};

}  // namespace kestrom::networking

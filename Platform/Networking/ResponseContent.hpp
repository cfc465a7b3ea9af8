#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Kestrom/Platform/URLError.hpp"
#include "Platform/Foundation/PosixFile.hpp"

#include <cstdint>
#include <expected>
#include <memory>
#include <span>

namespace kestrom::networking {

/// The content of an answer, collected in memory or in a temporary file. The file goes with it unless it is taken. One
/// thread at a time.
class ResponseContent {
 public:
  static ResponseContent inMemory(std::uint64_t maximumSize) { return ResponseContent(maximumSize); }

  /// Makes a file of a new name in `directory`, for this user alone.
  static std::expected<ResponseContent, URLError> inFile(const foundation::URL& directory, std::uint64_t maximumSize);

  std::uint64_t maximumSize() const { return _maximumSize; }

  std::uint64_t size() const { return _size; }

  /// Adds what came; fails when that is more than the maximum, or when the disk does not take it.
  std::expected<void, URLError> append(std::span<const std::uint8_t> bytes);

  foundation::Bytes takeBytes() { return std::move(_bytes); }
  /// The file, the receiver's from now on.
  foundation::URL takeFile();

 private:
  struct RemoveFile {
    void operator()(foundation::PosixFile* file) const;
  };

  explicit ResponseContent(std::uint64_t maximumSize) : _maximumSize(maximumSize) {}

  std::uint64_t _maximumSize;
  std::uint64_t _size = 0;
  foundation::Bytes _bytes;
  std::unique_ptr<foundation::PosixFile, RemoveFile> _file;
};

}  // namespace kestrom::networking

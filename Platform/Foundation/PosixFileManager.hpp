#pragma once

#include "Kestrom/Platform/FileManager.hpp"

#include <utility>

namespace kestrom::foundation {

/// The file system of a POSIX system. What it makes is for this user alone.
class PosixFileManager final : public FileManager {
 public:
  struct Directories {
    URL documents;
    URL temporary;
  };

  explicit PosixFileManager(Directories directories) : _directories(std::move(directories)) {}

  URL documentsDirectory() const override { return _directories.documents; }
  URL temporaryDirectory() const override { return _directories.temporary; }
  bool fileExists(const std::string& path) const override;
  std::expected<void, FileError> copyItem(const URL& source, const URL& destination) override;
  std::expected<void, FileError> removeItem(const URL& url) override;
  std::expected<void, FileError> createDirectory(const URL& url, bool withIntermediateDirectories) override;
  std::expected<Bytes, FileError> readFile(const URL& url, std::size_t maximumSize) const override;

  /// As promised; a symbolic link is replaced itself, a device or a pipe is left alone and an error.
  std::expected<void, FileError> writeFile(const URL& url, std::span<const std::uint8_t> bytes) override;

 private:
  Directories _directories;
};

}  // namespace kestrom::foundation

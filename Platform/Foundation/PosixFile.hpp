#pragma once

#include "Kestrom/Platform/FileError.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <utility>

namespace kestrom::foundation {

/// The error of a failed system call, by its `errno`.
FileError posixError(std::string path, int code);

/// The path that a file URL names; an error for any other URL, also one that names a file of another machine.
std::expected<std::string, FileError> localPath(const URL& url);

/// Brings the names in the directory that holds `path` to the disk.
std::expected<void, FileError> synchronizeDirectoryOf(const std::string& path);

/// An open file of the system, closed when dropped. One thread at a time.
class PosixFile {
 public:
  /// `flags` as of open(2). A file that is made is for this user alone. Never waits for the other end of a pipe.
  static std::expected<PosixFile, FileError> open(std::string path, int flags);

  /// Makes a file of a name that nobody can foresee in the directory that holds `path`, to be written.
  static std::expected<PosixFile, FileError> makeTemporaryBeside(const std::string& path);

  PosixFile(PosixFile&& other) noexcept
      : _descriptor(std::exchange(other._descriptor, -1)), _path(std::move(other._path)) {}
  PosixFile& operator=(PosixFile&& other) noexcept;
  ~PosixFile();

  const std::string& path() const { return _path; }

  /// The number of bytes read, at most the size of `buffer`; 0 at the end of the file.
  std::expected<std::size_t, FileError> read(std::span<std::uint8_t> buffer);

  /// Bytes of a regular file; anything else has no size.
  std::expected<std::uint64_t, FileError> size() const;

  /// The number of bytes written, which may be fewer than given.
  std::expected<std::size_t, FileError> write(std::span<const std::uint8_t> bytes);
  std::expected<void, FileError> writeAll(std::span<const std::uint8_t> bytes);

  /// Returns when what was written is on the disk.
  std::expected<void, FileError> synchronize();

 private:
  PosixFile(int descriptor, std::string path) : _descriptor(descriptor), _path(std::move(path)) {}
  std::unexpected<FileError> lastError() const;

  int _descriptor;
  std::string _path;
};

}  // namespace kestrom::foundation

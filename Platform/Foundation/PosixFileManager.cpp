#include "Platform/Foundation/PosixFileManager.hpp"

#include "Platform/Foundation/PosixFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace kestrom::foundation {

namespace {

constexpr std::size_t kBufferSize = 64 << 10;

std::expected<void, FileError> copyContent(PosixFile& source, PosixFile& destination) {
  std::array<std::uint8_t, kBufferSize> buffer;
  while (true) {
    const auto count = source.read(buffer);
    if (!count) return std::unexpected(count.error());
    if (*count == 0) return {};
    if (auto written = destination.writeAll(std::span(buffer).first(*count)); !written) return written;
  }
}

std::expected<void, FileError> makeDirectory(const std::string& path, bool withIntermediateDirectories) {
  const auto make = [&] { return ::mkdir(path.c_str(), S_IRWXU) == 0 ? 0 : errno; };
  int code = make();
  const std::size_t slash = path.rfind('/');
  if (code == ENOENT && withIntermediateDirectories && slash > 0) {
    if (auto made = makeDirectory(path.substr(0, slash), true); !made) return made;
    code = make();
  }
  std::error_code ignored;
  if (code == EEXIST && withIntermediateDirectories && std::filesystem::is_directory(path, ignored)) return {};
  if (code != 0) return std::unexpected(posixError(path, code));
  // What is put into it later is on the disk only if it is.
  return synchronizeDirectoryOf(path);
}

/// Fills a temporary file and gives it the name `path`.
std::expected<void, FileError> replace(const std::string& path, PosixFile& temporary,
                                       std::span<const std::uint8_t> bytes) {
  if (auto written = temporary.writeAll(bytes); !written) return written;
  if (auto synchronized = temporary.synchronize(); !synchronized) return synchronized;
  if (std::rename(temporary.path().c_str(), path.c_str()) < 0) return std::unexpected(posixError(path, errno));
  return {};
}

}  // namespace

bool PosixFileManager::fileExists(const std::string& path) const {
  struct stat status{};
  return path.find('\0') == std::string::npos && ::stat(path.c_str(), &status) == 0;
}

std::expected<void, FileError> PosixFileManager::copyItem(const URL& source, const URL& destination) {
  const auto from = localPath(source);
  if (!from) return std::unexpected(from.error());
  const auto to = localPath(destination);
  if (!to) return std::unexpected(to.error());
  auto input = PosixFile::open(*from, O_RDONLY);
  if (!input) return std::unexpected(input.error());
  auto output = PosixFile::open(*to, O_WRONLY | O_CREAT | O_EXCL);
  if (!output) return std::unexpected(output.error());
  auto copied = copyContent(*input, *output);
  if (!copied) ::unlink(to->c_str());
  return copied;
}

std::expected<void, FileError> PosixFileManager::removeItem(const URL& url) {
  const auto path = localPath(url);
  if (!path) return std::unexpected(path.error());
  std::error_code error;
  const std::uintmax_t count = std::filesystem::remove_all(*path, error);
  if (error) return std::unexpected(posixError(*path, error.value()));
  if (count == 0) return std::unexpected(posixError(*path, ENOENT));
  return {};
}

std::expected<void, FileError> PosixFileManager::createDirectory(const URL& url, bool withIntermediateDirectories) {
  const auto path = localPath(url);
  if (!path) return std::unexpected(path.error());
  return makeDirectory(*path, withIntermediateDirectories);
}

std::expected<Bytes, FileError> PosixFileManager::readFile(const URL& url, std::size_t maximumSize) const {
  const auto path = localPath(url);
  if (!path) return std::unexpected(path.error());
  auto file = PosixFile::open(*path, O_RDONLY);
  if (!file) return std::unexpected(file.error());
  Bytes bytes;
  std::size_t size = 0;
  while (true) {
    // One byte more than the limit tells whether there is more.
    const std::size_t wanted = std::max(kBufferSize, size * 2);
    bytes.resize(maximumSize < wanted ? maximumSize + 1 : wanted);
    const auto count = file->read(std::span(bytes).subspan(size));
    if (!count) return std::unexpected(count.error());
    if (*count == 0) break;
    size += *count;
    if (size > maximumSize) return std::unexpected(posixError(*path, EFBIG));
  }
  bytes.resize(size);
  return bytes;
}

std::expected<void, FileError> PosixFileManager::writeFile(const URL& url, std::span<const std::uint8_t> bytes) {
  const auto path = localPath(url);
  if (!path) return std::unexpected(path.error());
  struct stat status{};
  const bool isSpecial = ::lstat(path->c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode) &&
                         !S_ISDIR(status.st_mode);
  if (isSpecial) return std::unexpected(FileError{FileError::Kind::other, *path, "Not a regular file"});

  auto temporary = PosixFile::makeTemporaryBeside(*path);
  if (!temporary) return std::unexpected(temporary.error());
  if (auto replaced = replace(*path, *temporary, bytes); !replaced) {
    ::unlink(temporary->path().c_str());
    return replaced;
  }
  return synchronizeDirectoryOf(*path);
}

}  // namespace kestrom::foundation

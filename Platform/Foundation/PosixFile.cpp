#include "Platform/Foundation/PosixFile.hpp"

#include "Platform/Foundation/URLComponents.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kestrom::foundation {

namespace {

FileError::Kind kindOf(int code) {
  switch (code) {
    case ENOENT:
    case ENOTDIR:
      return FileError::Kind::notFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return FileError::Kind::noPermission;
    case ENOSPC:
    case EDQUOT:
      return FileError::Kind::noSpace;
    case EISDIR:
      return FileError::Kind::isDirectory;
    case EFBIG:
      return FileError::Kind::tooLarge;
    default:
      return FileError::Kind::other;
  }
}

/// Calls until no signal interrupts.
template <class Call>
auto retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

}  // namespace

FileError posixError(std::string path, int code) {
  return {kindOf(code), std::move(path), std::generic_category().message(code)};
}

std::expected<std::string, FileError> localPath(const URL& url) {
  const std::string host = URLComponents(url).host().value_or("");
  std::string path = url.path();
  // A path of the system ends at its first NUL, so that such a URL would name another file than it says.
  if (!url.isFileURL() || (!host.empty() && host != "localhost") || !path.starts_with('/') ||
      path.find('\0') != std::string::npos) {
    return std::unexpected(FileError{FileError::Kind::other, url.absoluteString(), "No file of this device"});
  }
  return path;
}

std::expected<void, FileError> synchronizeDirectoryOf(const std::string& path) {
  auto directory = PosixFile::open(directoryOf(path), O_RDONLY | O_DIRECTORY);
  if (!directory) return std::unexpected(std::move(directory.error()));
  return directory->synchronize();
}

std::expected<PosixFile, FileError> PosixFile::open(std::string path, int flags) {
  const int descriptor =
      retried([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, S_IRUSR | S_IWUSR); });
  if (descriptor < 0) return std::unexpected(posixError(std::move(path), errno));
  return PosixFile(descriptor, std::move(path));
}

std::expected<PosixFile, FileError> PosixFile::makeTemporaryBeside(const std::string& path) {
  // Not the file's own name with an ending: that could be longer than a name may be.
  std::string name = directoryOf(path) + ".kestrom-XXXXXX";
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) return std::unexpected(posixError(path, errno));
  return PosixFile(descriptor, std::move(name));
}

PosixFile& PosixFile::operator=(PosixFile&& other) noexcept {
  std::swap(_descriptor, other._descriptor);
  std::swap(_path, other._path);
  return *this;
}

PosixFile::~PosixFile() {
  // The descriptor is gone even if a signal interrupts: closing again could hit another thread's new file.
  if (_descriptor >= 0) ::close(_descriptor);
}

std::expected<std::size_t, FileError> PosixFile::read(std::span<std::uint8_t> buffer) {
  const ssize_t count = retried([&] { return ::read(_descriptor, buffer.data(), buffer.size()); });
  if (count < 0) return lastError();
  return static_cast<std::size_t>(count);
}

std::expected<std::uint64_t, FileError> PosixFile::size() const {
  struct stat status{};
  if (::fstat(_descriptor, &status) < 0) return lastError();
  if (!S_ISREG(status.st_mode)) {
    const auto kind = S_ISDIR(status.st_mode) ? FileError::Kind::isDirectory : FileError::Kind::other;
    return std::unexpected(FileError{kind, _path, "Not a regular file"});
  }
  return static_cast<std::uint64_t>(status.st_size);
}

std::expected<std::size_t, FileError> PosixFile::write(std::span<const std::uint8_t> bytes) {
  const ssize_t count = retried([&] { return ::write(_descriptor, bytes.data(), bytes.size()); });
  if (count < 0) return lastError();
  return static_cast<std::size_t>(count);
}

std::expected<void, FileError> PosixFile::writeAll(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const auto count = write(bytes);
    if (!count) return std::unexpected(count.error());
    bytes = bytes.subspan(*count);
  }
  return {};
}

std::expected<void, FileError> PosixFile::synchronize() {
  // Devices, pipes and the directories of some file systems cannot be synchronized and say so: nothing is lost there.
  if (retried([&] { return ::fsync(_descriptor); }) < 0 && errno != EINVAL) return lastError();
  return {};
}

std::unexpected<FileError> PosixFile::lastError() const {
  return std::unexpected(posixError(_path, errno));
}

}  // namespace kestrom::foundation

#include "Platform/Foundation/FileStreams.hpp"

#include <fcntl.h>

namespace kestrom::foundation {

namespace {

std::expected<void, FileError> openInto(std::optional<PosixFile>& file, const URL& url, int flags) {
  auto path = localPath(url);
  if (!path) return std::unexpected(std::move(path.error()));
  auto opened = PosixFile::open(*std::move(path), flags);
  if (!opened) return std::unexpected(std::move(opened.error()));
  file = *std::move(opened);
  return {};
}

std::unexpected<FileError> notOpen(const URL& url) {
  return std::unexpected(FileError{FileError::Kind::other, url.absoluteString(), "The stream is not open"});
}

}  // namespace

std::expected<void, FileError> FileInputStream::open() {
  return openInto(_file, _url, O_RDONLY);
}

std::expected<std::size_t, FileError> FileInputStream::read(std::span<std::uint8_t> buffer) {
  if (!_file) return notOpen(_url);
  return _file->read(buffer);
}

void FileInputStream::close() {
  _file.reset();
}

std::expected<void, FileError> FileOutputStream::open() {
  return openInto(_file, _url, O_WRONLY | O_CREAT | O_TRUNC);
}

std::expected<std::size_t, FileError> FileOutputStream::write(std::span<const std::uint8_t> bytes) {
  if (!_file) return notOpen(_url);
  return _file->write(bytes);
}

std::expected<void, FileError> FileOutputStream::close() {
  if (!_file) return notOpen(_url);
  PosixFile file = *std::exchange(_file, std::nullopt);
  if (auto synchronized = file.synchronize(); !synchronized) return synchronized;
  return synchronizeDirectoryOf(file.path());
}

}  // namespace kestrom::foundation

#include "Platform/Networking/ResponseContent.hpp"

#include <unistd.h>

#include <utility>

namespace kestrom::networking {

namespace {

std::unexpected<URLError> cannotWrite(const foundation::FileError& error) {
  return std::unexpected(URLError{URLError::Code::cannotWriteToFile, error.message});
}

}  // namespace

std::expected<ResponseContent, URLError> ResponseContent::inFile(const foundation::URL& directory,
                                                                 std::uint64_t maximumSize) {
  const auto path = foundation::localPath(directory.appendingPathComponent("download"));
  if (!path) return cannotWrite(path.error());
  auto file = foundation::PosixFile::makeTemporaryBeside(*path);
  if (!file) return cannotWrite(file.error());
  ResponseContent content(maximumSize);
  content._file.reset(new foundation::PosixFile(std::move(*file)));
  return content;
}

std::expected<void, URLError> ResponseContent::append(std::span<const std::uint8_t> bytes) {
  if (bytes.size() > _maximumSize - _size) {
    return std::unexpected(URLError{URLError::Code::dataLengthExceedsMaximum, "The answer is too large"});
  }
  if (!_file) {
    _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
  } else if (const auto written = _file->writeAll(bytes); !written) {
    return cannotWrite(written.error());
  }
  _size += bytes.size();
  return {};
}

foundation::URL ResponseContent::takeFile() {
  const std::unique_ptr<foundation::PosixFile> kept(_file.release());
  return foundation::URL::fromFilePath(kept->path());
}

void ResponseContent::RemoveFile::operator()(foundation::PosixFile* file) const {
  ::unlink(file->path().c_str());
  delete file;
}

}  // namespace kestrom::networking

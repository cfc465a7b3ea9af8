#include "Platform/Networking/RequestContent.hpp"

#include <fcntl.h>

#include <algorithm>

namespace kestrom::networking {

namespace {

std::unexpected<URLError> cannotOpen(std::string description) {
  return std::unexpected(URLError{URLError::Code::cannotOpenFile, std::move(description)});
}

}  // namespace

std::expected<RequestContent, URLError> RequestContent::ofFile(const foundation::URL& url) {
  const auto path = foundation::localPath(url);
  if (!path) return cannotOpen(path.error().message);
  auto file = foundation::PosixFile::open(*path, O_RDONLY);
  if (!file) return cannotOpen(file.error().message);
  const auto size = file->size();
  if (!size) return cannotOpen(size.error().message);
  return RequestContent(std::move(*file), *size);
}

std::expected<std::size_t, URLError> RequestContent::read(std::span<std::uint8_t> buffer) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), _size - _position));
  std::size_t count = wanted;
  if (!_file) {
    std::ranges::copy(_bytes.subspan(static_cast<std::size_t>(_position), wanted), buffer.begin());
  } else if (wanted > 0) {
    const auto read = _file->read(buffer.first(wanted));
    if (!read) return cannotOpen(read.error().message);
    if (*read == 0) return cannotOpen("The file has become shorter");
    count = *read;
  }
  _position += count;
  return count;
}

}  // namespace kestrom::networking

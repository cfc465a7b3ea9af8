#include "Apps/kestrom/LocalFiles.hpp"

#include "Platform/Foundation/FileStreams.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kestrom::app {

using foundation::FileError;
using foundation::URL;

std::expected<std::string, std::string> readFile(const std::string& path, std::size_t limit) {
  if (path.empty()) return std::unexpected("a file needs a name");
  const auto wordsOf = [](FileError& error) { return std::unexpected(std::move(error.message)); };
  // A stream rather than the file manager: what is named may be a pipe, whose size nobody knows.
  foundation::FileInputStream stream(URL::fromFilePath(path));
  if (auto opened = stream.open(); !opened) return wordsOf(opened.error());
  std::string content;
  std::size_t size = 0;
  while (true) {
    content.resize(std::max<std::size_t>(64 << 10, size * 2));
    auto count = stream.read({reinterpret_cast<std::uint8_t*>(content.data()) + size, content.size() - size});
    if (!count) return wordsOf(count.error());
    if (*count == 0) break;
    size += *count;
    if (size > limit) return std::unexpected("larger than " + std::to_string(limit) + " bytes");
  }
  content.resize(size);
  return content;
}

std::expected<void, std::string> replaceFile(const std::string& path, std::string_view content) {
  namespace fs = std::filesystem;
  // A link stays a link: what it points to is replaced.
  std::error_code unknown;
  fs::path target = fs::weakly_canonical(path, unknown);
  if (unknown) target = path;
  const fs::file_status earlier = fs::status(target, unknown);

  const URL url = URL::fromFilePath(target.string());
  foundation::PosixFileManager files({.documents = url, .temporary = url});
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(content.data());
  auto written = files.writeFile(url, {bytes, content.size()});
  if (!written) return std::unexpected(std::move(written.error().message));
  // Who may read the file is the person's affair, and stays.
  if (fs::exists(earlier)) fs::permissions(target, earlier.permissions(), unknown);
  return {};
}

}  // namespace kestrom::app

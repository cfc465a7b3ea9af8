#include "Apps/sandbox/TextFile.hpp"

#include "Platform/Foundation/JSONDocument.hpp"

#include <fstream>
#include <system_error>

namespace kestrom::sandbox {

std::expected<std::string, std::string> readTextFile(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::unexpected(file.string() + ": no such file");
  const auto size = std::filesystem::file_size(file, error);
  if (error || size > foundation::JSONDocument::kMaximumSize) return std::unexpected(file.string() + ": too large");
  std::string text(size, '\0');
  std::ifstream stream(file, std::ios::binary);
  if (!stream.read(text.data(), static_cast<std::streamsize>(size)))
    return std::unexpected(file.string() + ": cannot be read");
  return text;
}

}  // namespace kestrom::sandbox

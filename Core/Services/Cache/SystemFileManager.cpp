#include "Core/Services/Cache/SystemFileManager.hpp"

#include <string_view>

namespace kestrom::services {

using foundation::FileError;
using foundation::URL;

std::expected<URL, FileError> SystemFileManager::documentsFileURL(const std::string& fileName, bool create) {
  constexpr std::string_view kSeparators("/\0", 2);
  if (fileName.empty() || fileName == "." || fileName == ".." || fileName.find_first_of(kSeparators) != fileName.npos) {
    return std::unexpected(FileError{FileError::Kind::other, fileName, "No name of a file"});
  }
  const URL directory = _fileManager->documentsDirectory();
  if (create) {
    if (auto made = _fileManager->createDirectory(directory, true); !made) return std::unexpected(made.error());
  }
  return directory.appendingPathComponent(fileName);
}

}  // namespace kestrom::services

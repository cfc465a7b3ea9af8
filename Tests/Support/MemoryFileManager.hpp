#pragma once

#include "Kestrom/Platform/FileManager.hpp"

#include <map>
#include <string>

namespace kestrom::tests {

/// Files that lie in memory. One thread.
class MemoryFileManager final : public foundation::FileManager {
 public:
  using URL = foundation::URL;
  using FileError = foundation::FileError;
  using Result = std::expected<void, FileError>;

  URL documentsDirectory() const override { return URL::fromFilePath("/documents"); }
  URL temporaryDirectory() const override { return URL::fromFilePath("/temporary"); }
  bool fileExists(const std::string& path) const override { return files.contains(path); }

  Result copyItem(const URL& source, const URL& destination) override {
    const auto file = files.find(source.path());
    if (file == files.end()) return missing(source);
    files[destination.path()] = file->second;
    return {};
  }
  Result removeItem(const URL& url) override {
    if (files.erase(url.path()) == 0) return missing(url);
    return {};
  }
  Result createDirectory(const URL&, bool) override { return {}; }

  std::expected<foundation::Bytes, FileError> readFile(const URL& url, std::size_t) const override {
    const auto file = files.find(url.path());
    if (file == files.end()) return missing(url);
    return file->second;
  }
  Result writeFile(const URL& url, std::span<const std::uint8_t> bytes) override {
    files[url.path()].assign(bytes.begin(), bytes.end());
    return {};
  }

  /// By path.
  std::map<std::string, foundation::Bytes> files;

 private:
  static std::unexpected<FileError> missing(const URL& url) {
    return std::unexpected(FileError{FileError::Kind::notFound, url.path(), "No such file"});
  }
};

}  // namespace kestrom::tests

#pragma once

#include "Core/Services/Cache/FileManagerAdapter.hpp"
#include "Kestrom/Platform/FileManager.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// The platform's file manager.
class SystemFileManager final : public FileManagerAdapter {
 public:
  explicit SystemFileManager(std::shared_ptr<foundation::FileManager> fileManager)
      : _fileManager(std::move(fileManager)) {}

  std::expected<foundation::URL, foundation::FileError> documentsFileURL(const std::string& fileName,
                                                                         bool create) override;

  Result copyItem(const foundation::URL& source, const foundation::URL& destination) override {
    return _fileManager->copyItem(source, destination);
  }
  Result removeItem(const foundation::URL& url) override { return _fileManager->removeItem(url); }
  Result createDirectory(const foundation::URL& url, bool withIntermediateDirectories) override {
    return _fileManager->createDirectory(url, withIntermediateDirectories);
  }
  bool fileExists(const std::string& path) const override { return _fileManager->fileExists(path); }
  foundation::URL temporaryDirectory() const override { return _fileManager->temporaryDirectory(); }

  std::expected<foundation::Bytes, foundation::FileError> readFile(const foundation::URL& url,
                                                                   std::size_t maximumSize) const override {
    return _fileManager->readFile(url, maximumSize);
  }
  Result writeFile(const foundation::URL& url, std::span<const std::uint8_t> bytes) override {
    return _fileManager->writeFile(url, bytes);
  }

 private:
  std::shared_ptr<foundation::FileManager> _fileManager;
};

}  // namespace kestrom::services

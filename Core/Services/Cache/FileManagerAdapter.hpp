#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/FileError.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>

namespace kestrom::services {

/// The part of the file system that the kit's own files need. Each call means what the like-named one of
/// `foundation::FileManager` means.
class FileManagerAdapter {
 public:
  using Result = std::expected<void, foundation::FileError>;

  virtual ~FileManagerAdapter() = default;

  /// Where a file of that name lies in the documents directory, which is made with all above it when `create` is set.
  /// A name that is none of a file right there is an error of kind `other`.
  virtual std::expected<foundation::URL, foundation::FileError> documentsFileURL(const std::string& fileName,
                                                                                 bool create) = 0;

  virtual Result copyItem(const foundation::URL& source, const foundation::URL& destination) = 0;
  virtual Result removeItem(const foundation::URL& url) = 0;
  virtual Result createDirectory(const foundation::URL& url, bool withIntermediateDirectories) = 0;
  virtual bool fileExists(const std::string& path) const = 0;
  virtual foundation::URL temporaryDirectory() const = 0;

  virtual std::expected<foundation::Bytes, foundation::FileError> readFile(const foundation::URL& url,
                                                                           std::size_t maximumSize) const = 0;
  virtual Result writeFile(const foundation::URL& url, std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace kestrom::services

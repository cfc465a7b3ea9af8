#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/FileError.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <span>
#include <string>

namespace kestrom::foundation {

/// The file system as the kit sees it. A URL that is no file URL of this device is an error of kind `other`. All calls
/// are done when they return and may come from any thread; two at once for one file are the callers' affair.
class KESTROM_API FileManager {
 public:
  virtual ~FileManager() = default;

  /// Where the user's data lie that must not get lost. The directory need not exist yet.
  virtual URL documentsDirectory() const = 0;
  /// Where files lie that the system may clear when the application does not run.
  virtual URL temporaryDirectory() const = 0;

  /// True when a file or a directory can be seen at a path of the file system.
  virtual bool fileExists(const std::string& path) const = 0;

  /// Copies a file. Nothing may stand at the destination yet. A copy that fails leaves nothing there.
  virtual std::expected<void, FileError> copyItem(const URL& source, const URL& destination) = 0;

  /// Removes a file, or a directory with all that it holds. A symbolic link is removed, not what it points to.
  virtual std::expected<void, FileError> removeItem(const URL& url) = 0;

  /// Makes a directory. With intermediate directories those above it are made too, and one that stands there already is
  /// fine.
  virtual std::expected<void, FileError> createDirectory(const URL& url, bool withIntermediateDirectories) = 0;

  /// The whole content of a file; `tooLarge` when it has more than `maximumSize` bytes.
  virtual std::expected<Bytes, FileError> readFile(const URL& url, std::size_t maximumSize) const = 0;

  /// Gives a file, which may be new, `bytes` as its whole content. Whatever happens, a crash or a power cut included,
  /// it holds either all of the old or all of the new; on success the new is on the disk.
  virtual std::expected<void, FileError> writeFile(const URL& url, std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace kestrom::foundation

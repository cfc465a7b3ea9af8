#pragma once

#include "Kestrom/Export.hpp"

#include <cstdint>
#include <string>

namespace kestrom::foundation {

/// Why something could not be done with a file.
struct KESTROM_API FileError {
  enum class Kind : std::uint8_t {
    /// There is no such file, or a directory of its path is missing or is no directory.
    notFound,
    noPermission,
    /// The disk or the user's share of it is full.
    noSpace,
    /// A directory stands where a file is wanted.
    isDirectory,
    /// The file is larger than the caller or the system takes.
    tooLarge,
    other,
  };

  Kind kind = Kind::other;
  /// The path of the file system, or the URL where it names no such path.
  std::string path;
  /// For the log, in English.
  std::string message;

  friend bool operator==(const FileError&, const FileError&) = default;
};

}  // namespace kestrom::foundation

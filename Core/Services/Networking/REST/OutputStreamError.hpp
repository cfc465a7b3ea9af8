#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <variant>

namespace kestrom::services {

/// Why a stream could not be written.
struct OutputStreamError {
  /// The stream cannot be made for the file.
  struct UnableToCreateFile {
    foundation::URL file;

    friend bool operator==(const UnableToCreateFile&, const UnableToCreateFile&) = default;
  };
  /// A source file cannot be opened or read.
  struct ReadFailure {
    foundation::URL file;

    friend bool operator==(const ReadFailure&, const ReadFailure&) = default;
  };
  /// A text has no form in UTF-8.
  struct StringConversionFailure {
    friend bool operator==(const StringConversionFailure&, const StringConversionFailure&) = default;
  };
  /// A buffer has no address.
  struct BufferFailure {
    friend bool operator==(const BufferFailure&, const BufferFailure&) = default;
  };
  struct WriteFailure {
    friend bool operator==(const WriteFailure&, const WriteFailure&) = default;
  };

  std::variant<UnableToCreateFile, ReadFailure, StringConversionFailure, BufferFailure, WriteFailure> form;

  friend bool operator==(const OutputStreamError&, const OutputStreamError&) = default;
};

}  // namespace kestrom::services

#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <optional>
#include <string>
#include <variant>

namespace kestrom::services {

/// One part of a multipart body.
struct MultipartParameter {
  /// The content: bytes, or a file that is streamed.
  using MultipartData = std::variant<foundation::Bytes, foundation::URL>;

  /// Name of the form's field.
  std::string name;
  std::optional<std::string> fileName;
  /// Text of the part's content type.
  std::optional<std::string> mimeType;
  MultipartData data;

  friend bool operator==(const MultipartParameter&, const MultipartParameter&) = default;
};

}  // namespace kestrom::services

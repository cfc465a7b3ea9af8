#pragma once

#include <optional>
#include <string_view>

namespace kestrom::sandbox {

/// A kind of media that can be uploaded.
struct MediaType {
  /// The bare word that the kit sends as a part's content type.
  std::string_view word;
  std::string_view extension;
  std::string_view contentType;
};

/// The kind that a part's content type names, by its word or, for other clients, by its internet media type.
std::optional<MediaType> mediaType(std::string_view contentType);

}  // namespace kestrom::sandbox

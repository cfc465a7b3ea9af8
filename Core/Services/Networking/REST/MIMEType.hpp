#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrom::services {

/// What an uploaded file is.
enum class MIMEType : std::uint8_t { png, jpeg, jpg, gif, pdf, plainText, mp4, tar };

/// The text that goes out as the content type of the file's part. The server wants these bare words, not internet media
/// types.
constexpr std::string_view rawValue(MIMEType type) {
  constexpr std::array<std::string_view, 8> kTexts{"png", "jpeg", "jpg", "gif", "pdf", "plainText", "mp4", "tar"};
  return kTexts[static_cast<std::size_t>(type)];
}

}  // namespace kestrom::services

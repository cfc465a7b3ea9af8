#pragma once

#include "Platform/Imaging/ImageCodec.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::tests {

inline foundation::Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

/// A picture whose pixels are the letters of a text, for telling pictures apart.
inline imaging::Image imageOf(std::string_view text) {
  return {static_cast<std::uint32_t>(text.size()), 1, std::make_shared<const foundation::Bytes>(bytesOf(text))};
}

/// Pictures are the texts "picture:…"; "JPEG <quality>:" and the pixels are what they are encoded to. An empty picture
/// does not encode.
class FakeImageCodec final : public imaging::ImageCodec {
 public:
  std::optional<imaging::Image> decode(std::span<const std::uint8_t> bytes) const override {
    constexpr std::string_view kMark = "picture:";
    if (bytes.size() < kMark.size() || !std::equal(kMark.begin(), kMark.end(), bytes.begin())) return std::nullopt;
    const auto pixels = bytes.subspan(kMark.size());
    return imageOf({reinterpret_cast<const char*>(pixels.data()), pixels.size()});
  }

  std::optional<foundation::Bytes> encodeJPEG(const imaging::Image& image, double quality) const override {
    if (image.width == 0) return std::nullopt;
    foundation::Bytes encoded = bytesOf("JPEG " + std::to_string(quality) + ":");
    encoded.insert(encoded.end(), image.pixels->begin(), image.pixels->end());
    return encoded;
  }
};

}  // namespace kestrom::tests

#pragma once

#include "Kestrom/Platform/Bytes.hpp"
#include "Platform/Imaging/Image.hpp"

#include <cstdint>
#include <optional>
#include <span>

namespace kestrom::imaging {

/// Turns bytes into pictures and back. Called from any thread.
class ImageCodec {
 public:
  virtual ~ImageCodec() = default;

  /// Absent for bytes that are no picture.
  virtual std::optional<Image> decode(std::span<const std::uint8_t> bytes) const = 0;

  /// `quality` from 0 to 1, 1 being best. Absent for a picture that cannot be encoded.
  virtual std::optional<foundation::Bytes> encodeJPEG(const Image& image, double quality) const = 0;
};

/// For where there are no codecs: nothing is a picture.
class NoImageCodec final : public ImageCodec {
 public:
  std::optional<Image> decode(std::span<const std::uint8_t>) const override { return std::nullopt; }
  std::optional<foundation::Bytes> encodeJPEG(const Image&, double) const override { return std::nullopt; }
};

}  // namespace kestrom::imaging

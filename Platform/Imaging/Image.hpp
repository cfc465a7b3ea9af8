#pragma once

#include "Kestrom/Platform/Bytes.hpp"

#include <cstdint>
#include <memory>

namespace kestrom::imaging {

/// A picture in memory: rows from top to bottom, four bytes a pixel (red, green, blue, alpha, not premultiplied).
/// Copies share the pixels, which never change; any thread.
struct Image {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::shared_ptr<const foundation::Bytes> pixels;

  friend bool operator==(const Image& a, const Image& b) {
    if (a.width != b.width || a.height != b.height) return false;
    return a.pixels == b.pixels || (a.pixels && b.pixels && *a.pixels == *b.pixels);
  }
};

}  // namespace kestrom::imaging

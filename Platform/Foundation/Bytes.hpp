#pragma once

#include <cstdint>
#include <vector>

namespace kestrom::foundation {

/// Bytes of no known encoding.
using Bytes = std::vector<std::uint8_t>;

}  // namespace kestrom::foundation

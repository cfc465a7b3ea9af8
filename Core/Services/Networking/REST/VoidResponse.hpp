#pragma once

namespace kestrom::services {

/// Stands for a body that nobody reads.
struct VoidResponse {
  friend bool operator==(const VoidResponse&, const VoidResponse&) = default;
};

}  // namespace kestrom::services

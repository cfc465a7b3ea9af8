#pragma once

#include "Kestrom/Platform/URLError.hpp"
#include "Kestrom/Platform/URLRequest.hpp"

#include <optional>

namespace kestrom::networking {

/// Why a request must not be sent: a URL that is no https URL, or a method or header that would change the meaning of
/// what stands behind it.
std::optional<URLError> faultOf(const URLRequest& request);

}  // namespace kestrom::networking

#pragma once

#include "Kestrom/KestromConfiguration.hpp"

#include <string_view>

namespace kestrom::services {

/// The host of the REST interface in an environment, fixed when the kit is built.
std::string_view apiHost(KestromEnvironment environment);

}  // namespace kestrom::services

#pragma once

#include "Platform/Foundation/ListFormatter.hpp"

#include <memory>

namespace kestrom::services {

/// Joins what a person chose to one bubble, in the English of the United States whatever the device speaks, as the
/// bot's texts are. Made at the first call, once for the process, as its language data are costly to load. Any thread.
std::shared_ptr<const foundation::ListFormatter> sharedListFormatter();

}  // namespace kestrom::services

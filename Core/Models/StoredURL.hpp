#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <optional>
#include <string_view>

namespace kestrom::models {

/// The URL that a text of a stored answer stands for. Absent when it parses as none, or names neither a local file nor
/// the web. A local file is looked for in the present documents directory by its file name alone, because the path of
/// that directory changes between installs; an address without a name, or whose name would lead out of the directory,
/// gives no URL.
std::optional<foundation::URL> storedURL(std::string_view text, const foundation::URL& documentsDirectory);

}  // namespace kestrom::models

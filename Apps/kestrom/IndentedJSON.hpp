#pragma once

#include <string>
#include <string_view>

namespace kestrom::app {

/// Compact JSON, as the writer leaves it, laid out for a reader: one member or element a line, two blanks a level.
/// Empty lists and objects stay on their line.
std::string indentedJSON(std::string_view compact);

}  // namespace kestrom::app

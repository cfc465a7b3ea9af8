#pragma once

#include <cstddef>
#include <string>

namespace kestrom::benchmarks {

/// The JSON text of a template of at least `bytes` bytes: modules of about twenty questions each, with options, a menu,
/// a branching node and a repeat among them, in the proportions of the example template. The same for the same
/// argument.
std::string generateTemplate(std::size_t bytes);

}  // namespace kestrom::benchmarks

#pragma once

#include "Apps/sandbox/SandboxStore.hpp"

#include <expected>
#include <filesystem>
#include <string>

namespace kestrom::sandbox {

/// Puts the cases, bots and brands that a seed file lists into the store, as far as they are not there yet. The error
/// is one line that names the file. Throws DatabaseFault.
std::expected<void, std::string> plantSeed(const std::filesystem::path& seedFile, SandboxStore& store);

}  // namespace kestrom::sandbox

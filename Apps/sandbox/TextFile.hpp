#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kestrom::sandbox {

/// The whole content of a regular file of at most 64 MiB; the error names it.
std::expected<std::string, std::string> readTextFile(const std::filesystem::path& file);

}  // namespace kestrom::sandbox

#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

/// Files that the person at the terminal names. Errors are a few words for that person, without the file's name.
namespace kestrom::app {

/// The whole content of a file or a pipe; an error beyond `limit` bytes, of which nothing more is read.
std::expected<std::string, std::string> readFile(const std::string& path, std::size_t limit);

/// Gives a file new content so that it holds, whatever happens, either all of the old or all of the new: the content is
/// written beside it, brought to the disk, and takes its name.
std::expected<void, std::string> replaceFile(const std::string& path, std::string_view content);

}  // namespace kestrom::app

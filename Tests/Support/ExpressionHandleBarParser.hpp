#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::tests {

/// The text of a trimmed path; absent for one that does not resolve.
using PathLookup = std::function<std::optional<std::string>(std::string_view path)>;

/// Placeholders filled in the plainest way: a regular expression engine finds "\{\{\{?(.*?)\}\}\}?", and the matches
/// are replaced from the last to the first. Slow on texts of many braces. The yardstick for `HandleBarParser`.
std::string parsedByExpression(std::string_view text, const PathLookup& lookUp);

}  // namespace kestrom::tests

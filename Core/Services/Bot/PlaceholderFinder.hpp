#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrom::services {

/// A placeholder in a text: from its first opening brace to behind its last closing one.
struct Placeholder {
  std::size_t start;
  std::size_t end;
  /// What the braces hold, without the blanks around it.
  std::string_view path;
};

/// Finds placeholders from left to right: what the expression "\{\{\{?(.*?)\}\}\}?" matches, in one pass over the text,
/// which must outlive it.
class PlaceholderFinder {
 public:
  explicit PlaceholderFinder(std::string_view text) : _text(text) {}

  /// Absent when there is none any more.
  std::optional<Placeholder> next();

 private:
  std::string_view _text;
  std::size_t _at = 0;
};

/// Takes the next piece of a path off its front; absent when there is none. Pieces are separated by points, and empty
/// ones are dropped.
std::optional<std::string_view> takePathPiece(std::string_view& path);

}  // namespace kestrom::services

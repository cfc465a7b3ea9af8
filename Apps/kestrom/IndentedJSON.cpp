#include "Apps/kestrom/IndentedJSON.hpp"

#include <cstddef>

namespace kestrom::app {

namespace {

/// Index behind the string that begins at `from` with its quotation mark.
std::size_t endOfString(std::string_view text, std::size_t from) {
  std::size_t index = from + 1;
  while (text[index] != '"') index += text[index] == '\\' ? 2 : 1;
  return index + 1;
}

}  // namespace

std::string indentedJSON(std::string_view compact) {
  std::string out;
  out.reserve(compact.size() * 2);
  std::size_t level = 0;
  const auto breakLine = [&out, &level] { out.append(1, '\n').append(2 * level, ' '); };
  for (std::size_t index = 0; index < compact.size(); ++index) {
    const char character = compact[index];
    switch (character) {
      case '"': {
        const std::size_t end = endOfString(compact, index);
        out += compact.substr(index, end - index);
        index = end - 1;
        break;
      }
      case '{':
      case '[':
        out += character;
        if (compact[index + 1] == '}' || compact[index + 1] == ']') {
          out += compact[++index];
        } else {
          ++level;
          breakLine();
        }
        break;
      case '}':
      case ']':
        --level;
        breakLine();
        out += character;
        break;
      case ',':
        out += character;
        breakLine();
        break;
      case ':':
        out += ": ";
        break;
      default:
        out += character;
    }
  }
  return out;
}

}  // namespace kestrom::app

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrom::app {

enum class LineBreaks : std::uint8_t { keep, escape };

/// `text` without anything that a terminal would obey: control characters (C0, DEL, C1) are shown as "\x1b", bytes that
/// are no UTF-8 as U+FFFD. Texts of templates and file names go through here before they are printed, because they come
/// from others. Line breaks stay where they are kept; a message that must stay on its line has them shown as "\n".
std::string printableText(std::string_view text, LineBreaks lineBreaks);

/// True when the whole text is well-formed UTF-8.
bool isUTF8(std::string_view text);

}  // namespace kestrom::app

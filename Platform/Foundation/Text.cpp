#include "Platform/Foundation/Text.hpp"

#include "Platform/Foundation/FatalError.hpp"

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace kestrom::foundation {

namespace {

/// In ASCII only a carriage return and a line feed join to one character.
bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0 && c != '\r'; });
}

icu::BreakIterator& characterIterator() {
  // Kept for the thread: making one costs several times as much as walking a message of the chat.
  static thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> made(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    if (U_FAILURE(error)) fatalError("Cannot create an iterator over characters");
    return made;
  }();
  return *iterator;
}

/// Calls `visit(end)` with the offset behind each character, until it returns false.
template <class Visit>
void forEachCharacterEnd(std::string_view text, Visit visit) {
  icu::BreakIterator& iterator = characterIterator();
  UErrorCode error = U_ZERO_ERROR;
  UText* opened = utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error);
  iterator.setText(opened, error);
  if (U_SUCCESS(error)) {
    for (auto end = iterator.next(); end != icu::BreakIterator::DONE; end = iterator.next()) {
      if (!visit(static_cast<std::size_t>(end))) break;
    }
  }
  utext_close(opened);
}

template <class Map>
std::string mapped(std::string_view text, Map map) {
  std::string result;
  icu::StringByteSink<std::string> sink(&result);
  UErrorCode error = U_ZERO_ERROR;
  map(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink, error);
  return result;
}

bool isBlank(UChar32 point) {
  return point == '\t' || u_charType(point) == U_SPACE_SEPARATOR;
}

}  // namespace

std::size_t characterCount(std::string_view text) {
  if (isPlain(text)) return text.size();
  std::size_t count = 0;
  forEachCharacterEnd(text, [&](std::size_t) { return ++count, true; });
  return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  if (isPlain(text)) return text.substr(0, count);
  std::size_t length = 0;
  std::size_t seen = 0;
  forEachCharacterEnd(text, [&](std::size_t end) {
    if (seen == count) return false;
    ++seen;
    length = end;
    return true;
  });
  return text.substr(0, length);
}

std::string reversedCharacters(std::string_view text) {
  if (isPlain(text)) return {text.rbegin(), text.rend()};
  std::string reversed(text.size(), '\0');
  std::size_t start = 0;
  forEachCharacterEnd(text, [&](std::size_t end) {
    text.copy(reversed.data() + (text.size() - end), end - start, start);
    start = end;
    return true;
  });
  return reversed;
}

std::string uppercased(std::string_view text) {
  return mapped(text, [](icu::StringPiece piece, icu::ByteSink& sink, UErrorCode& error) {
    icu::CaseMap::utf8ToUpper("", 0, piece, sink, nullptr, error);
  });
}

std::string lowercased(std::string_view text) {
  return mapped(text, [](icu::StringPiece piece, icu::ByteSink& sink, UErrorCode& error) {
    icu::CaseMap::utf8ToLower("", 0, piece, sink, nullptr, error);
  });
}

std::string_view trimmedBlanks(std::string_view text) {
  const auto size = static_cast<std::int32_t>(text.size());
  std::int32_t start = 0;
  while (start < size) {
    std::int32_t next = start;
    UChar32 point = 0;
    U8_NEXT(text.data(), next, size, point);
    if (point < 0 || !isBlank(point)) break;
    start = next;
  }
  std::int32_t end = size;
  while (end > start) {
    std::int32_t previous = end;
    UChar32 point = 0;
    U8_PREV(text.data(), start, previous, point);
    if (point < 0 || !isBlank(point)) break;
    end = previous;
  }
  return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

}  // namespace kestrom::foundation

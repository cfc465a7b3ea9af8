#include "Platform/Foundation/JSONDocument.hpp"

#include "Platform/Foundation/JSONCarefulParser.hpp"

#include <simdjson.h>

#include <bit>
#include <charconv>
#include <cmath>

namespace kestrom::foundation {

struct JSONDocument::Storage {
  detail::JSONTape tape{};
  /// The fast parser's own buffers, or those of the careful one; the other is empty.
  simdjson::dom::document fast;
  detail::JSONTapeContent careful;
};

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

std::string position(std::string_view text, std::size_t offset) {
  std::size_t line = 1;
  std::size_t column = 1;
  for (const char c : text.substr(0, offset)) {
    if (c == '\n') {
      ++line;
      column = 1;
    } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

}  // namespace

JSONDocument::JSONDocument(std::unique_ptr<Storage> storage) : _storage(std::move(storage)) {}
JSONDocument::JSONDocument(JSONDocument&&) noexcept = default;
JSONDocument& JSONDocument::operator=(JSONDocument&&) noexcept = default;
JSONDocument::~JSONDocument() = default;

JSONValue JSONDocument::root() const {
  return {&_storage->tape, 1};
}

std::expected<JSONDocument, JSONSyntaxError> JSONDocument::parse(std::string_view text) {
  if (text.size() > kMaximumSize) {
    return std::unexpected(JSONSyntaxError{"the document has " + std::to_string(text.size()) + " bytes; the limit is " +
                                           std::to_string(kMaximumSize)});
  }
  auto storage = std::make_unique<Storage>();
  simdjson::dom::parser parser;
  if (parser.allocate(text.size(), kMaximumDepth) == simdjson::SUCCESS &&
      parser.parse_into_document(storage->fast, text.data(), text.size()).error() == simdjson::SUCCESS) {
    storage->tape = {storage->fast.tape.get(), storage->fast.string_buf.get()};
    return JSONDocument(std::move(storage));
  }

  auto careful = detail::parseJSONCarefully(text, kMaximumDepth);
  if (!careful) {
    return std::unexpected(JSONSyntaxError{"the text is no JSON at " + position(text, careful.error().offset) + ": " +
                                           careful.error().reason});
  }
  storage->fast = {};
  storage->careful = std::move(*careful);
  storage->tape = {storage->careful.words.data(), storage->careful.strings.data()};
  return JSONDocument(std::move(storage));
}

JSONType JSONValue::type() const {
  switch (letter()) {
    case 't':
    case 'f':
      return JSONType::boolean;
    case 'l':
    case 'u':
    case 'd':
    case 'b':
      return JSONType::number;
    case '"':
      return JSONType::string;
    case '[':
      return JSONType::array;
    case '{':
      return JSONType::object;
    default:
      return JSONType::null;
  }
}

std::optional<std::int64_t> JSONValue::integer() const {
  if (letter() == 'l') return std::bit_cast<std::int64_t>(numberBits());
  if (letter() != 'd') return std::nullopt;
  const auto value = std::bit_cast<double>(numberBits());
  // -2^63 as a double is what an integer just below the range was rounded to.
  if (std::trunc(value) != value || value <= -kTwoTo63 || value >= kTwoTo63) return std::nullopt;
  return static_cast<std::int64_t>(value);
}

std::optional<double> JSONValue::number() const {
  switch (letter()) {
    case 'l':
      return static_cast<double>(std::bit_cast<std::int64_t>(numberBits()));
    case 'u':
      return static_cast<double>(numberBits());
    case 'd':
      return std::bit_cast<double>(numberBits());
    default:
      return std::nullopt;
  }
}

std::string JSONValue::numberText() const {
  if (letter() == 'b') return std::string(text());
  if (letter() == 'u') return std::to_string(numberBits());
  if (const auto whole = integer()) return std::to_string(*whole);
  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, std::bit_cast<double>(numberBits()));
  return {buffer, written.ptr};
}

std::size_t JSONValue::size() const {
  const std::size_t count = (word() >> 32) & 0xFFFFFF;
  if (count < 0xFFFFFF) return count;
  // The word holds no larger count: what is beyond it is counted one by one.
  std::size_t values = 0;
  for (auto it = begin(); it != end(); ++it) ++values;
  return letter() == '{' ? values / 2 : values;
}

std::optional<JSONValue> JSONValue::member(std::string_view key) const {
  if (letter() != '{') return std::nullopt;
  std::optional<JSONValue> found;
  const auto last = end();
  for (auto it = begin(); it != last; ++it) {
    const bool matches = (*it).string() == key;
    ++it;
    if (matches) found = *it;
  }
  return found;
}

}  // namespace kestrom::foundation

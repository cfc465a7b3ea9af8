#include "Platform/Foundation/JSONDocument.hpp"

#include <simdjson.h>
#include <boost/json/basic_parser_impl.hpp>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace kestrom::foundation {

struct JSONDocument::Storage {
  detail::JSONTape tape{};
  /// The fast parser's own buffers, or those of the careful one; the other is empty.
  simdjson::dom::document fast;
  std::vector<std::uint64_t> words;
  std::vector<std::uint8_t> strings;
};

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

/// Writes the same form of a document as the fast parser, for what that one refuses: integers beyond 64 bits and
/// numbers beyond a double's range are legal JSON, and may stand where nobody reads them.
struct TapeHandler {
  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);
  using Error = boost::json::error_code;
  using Text = boost::json::string_view;

  std::vector<std::uint64_t> words;
  std::vector<std::uint8_t> strings;
  std::vector<std::size_t> open;
  std::string partial;

  void push(char letter, std::uint64_t payload) { words.push_back(static_cast<std::uint64_t>(letter) << 56 | payload); }

  bool pushText(char letter, Text rest) {
    partial.append(rest.data(), rest.size());
    push(letter, strings.size());
    const auto length = static_cast<std::uint32_t>(partial.size());
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&length);
    strings.insert(strings.end(), bytes, bytes + sizeof length);
    strings.insert(strings.end(), partial.begin(), partial.end());
    partial.clear();
    return true;
  }

  bool pushNumber(Text rest) {
    partial.append(rest.data(), rest.size());
    const char* first = partial.data();
    const char* last = first + partial.size();
    std::int64_t integer = 0;
    std::uint64_t natural = 0;
    if (const auto read = std::from_chars(first, last, integer); read.ec == std::errc() && read.ptr == last) {
      push('l', 0);
      words.push_back(std::bit_cast<std::uint64_t>(integer));
    } else if (const auto wide = std::from_chars(first, last, natural); wide.ec == std::errc() && wide.ptr == last) {
      push('u', 0);
      words.push_back(natural);
    } else if (const double real = std::strtod(partial.c_str(), nullptr); std::isfinite(real)) {
      push('d', 0);
      words.push_back(std::bit_cast<std::uint64_t>(real));
    } else {
      return pushText('b', {});
    }
    partial.clear();
    return true;
  }

  bool begin(char letter) {
    open.push_back(words.size());
    push(letter, 0);
    return true;
  }

  bool end(char letter, std::size_t count) {
    const std::size_t start = open.back();
    open.pop_back();
    push(letter, start);
    words[start] |= std::uint64_t{std::min<std::size_t>(count, 0xFFFFFF)} << 32 | words.size();
    return true;
  }

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return begin('{'); }
  bool on_object_end(std::size_t count, Error&) { return end('}', count); }
  bool on_array_begin(Error&) { return begin('['); }
  bool on_array_end(std::size_t count, Error&) { return end(']', count); }
  bool on_key_part(Text part, std::size_t, Error&) { return keep(part); }
  bool on_key(Text rest, std::size_t, Error&) { return pushText('"', rest); }
  bool on_string_part(Text part, std::size_t, Error&) { return keep(part); }
  bool on_string(Text rest, std::size_t, Error&) { return pushText('"', rest); }
  bool on_number_part(Text part, Error&) { return keep(part); }
  bool on_int64(std::int64_t, Text rest, Error&) { return pushNumber(rest); }
  bool on_uint64(std::uint64_t, Text rest, Error&) { return pushNumber(rest); }
  bool on_double(double, Text rest, Error&) { return pushNumber(rest); }
  bool on_comment_part(Text, Error&) { return true; }
  bool on_comment(Text, Error&) { return true; }
  bool on_bool(bool value, Error&) {
    push(value ? 't' : 'f', 0);
    return true;
  }
  bool on_null(Error&) {
    push('n', 0);
    return true;
  }
  bool keep(Text part) {
    partial.append(part.data(), part.size());
    return true;
  }
};

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

  boost::json::parse_options options;
  options.max_depth = kMaximumDepth;
  boost::json::basic_parser<TapeHandler> careful(options);
  careful.handler().push('r', 0);
  boost::json::error_code error;
  const std::size_t consumed = careful.write_some(false, text.data(), text.size(), error);
  if (!error && consumed < text.size()) error = boost::json::make_error_code(boost::json::error::extra_data);
  if (error) {
    return std::unexpected(JSONSyntaxError{"the text is no JSON at " + position(text, std::min(consumed, text.size())) +
                                           ": " + error.message()});
  }
  storage->fast = {};
  storage->words = std::move(careful.handler().words);
  storage->strings = std::move(careful.handler().strings);
  storage->tape = {storage->words.data(), storage->strings.data()};
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
  if (std::trunc(value) != value || value < -kTwoTo63 || value >= kTwoTo63) return std::nullopt;
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

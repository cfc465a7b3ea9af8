#include "Platform/Foundation/JSONCarefulParser.hpp"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <optional>

namespace kestrom::foundation::detail {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

class CarefulParser {
 public:
  CarefulParser(std::string_view text, std::size_t maximumDepth) : _text(text), _maximumDepth(maximumDepth) {}

  std::expected<JSONTapeContent, JSONFault> parse() {
    push('r', 0);
    bool ok = value();
    while (ok && !_open.empty()) ok = _content.words[_open.back().start] >> 56 == '{' ? member() : element();
    if (ok) {
      skipBlanks();
      ok = _at == _text.size() || fail("there is text behind the document");
    }
    if (!ok) return std::unexpected(std::move(_fault));
    return std::move(_content);
  }

 private:
  struct Container {
    std::size_t start;
    std::size_t count;
  };

  bool fail(std::string reason) {
    _fault = {_at, std::move(reason)};
    return false;
  }

  void push(char letter, std::uint64_t payload) {
    _content.words.push_back(static_cast<std::uint64_t>(letter) << 56 | payload);
  }

  char peek() const { return _at < _text.size() ? _text[_at] : '\0'; }

  void skipBlanks() { _at = std::min(_text.find_first_not_of(" \t\r\n", _at), _text.size()); }

  bool take(char c) {
    if (_at >= _text.size() || _text[_at] != c) return false;
    ++_at;
    return true;
  }

  /// The next member of the innermost object, or its end.
  bool member() {
    skipBlanks();
    if (take('}')) return close('}');
    if (_open.back().count > 0) {
      if (!take(',')) return fail("expected \",\" or \"}\"");
      skipBlanks();
    }
    if (peek() != '"') return fail("expected a key in quotes");
    if (!string()) return false;
    skipBlanks();
    if (!take(':')) return fail("expected \":\"");
    ++_open.back().count;
    return value();
  }

  /// The next element of the innermost array, or its end.
  bool element() {
    skipBlanks();
    if (take(']')) return close(']');
    if (_open.back().count > 0 && !take(',')) return fail("expected \",\" or \"]\"");
    ++_open.back().count;
    return value();
  }

  bool value() {
    skipBlanks();
    switch (peek()) {
      case '{':
      case '[':
        return open();
      case '"':
        return string();
      case 't':
        return literal("true");
      case 'f':
        return literal("false");
      case 'n':
        return literal("null");
      default:
        return number();
    }
  }

  bool open() {
    if (_open.size() >= _maximumDepth) {
      return fail("lists and objects nest deeper than the limit of " + std::to_string(_maximumDepth) + " levels");
    }
    _open.push_back({_content.words.size(), 0});
    push(_text[_at++], 0);
    return true;
  }

  bool close(char bracket) {
    const auto [start, count] = _open.back();
    _open.pop_back();
    push(bracket, start);
    _content.words[start] |= std::uint64_t{std::min<std::size_t>(count, 0xFFFFFF)} << 32 | _content.words.size();
    return true;
  }

  bool literal(std::string_view word) {
    if (!_text.substr(_at).starts_with(word)) return fail("expected a value");
    _at += word.size();
    push(word.front(), 0);
    return true;
  }

  bool skipDigits() {
    const std::size_t first = _at;
    while (isDigit(peek())) ++_at;
    return _at > first;
  }

  bool number() {
    const std::size_t first = _at;
    take('-');
    if (!isDigit(peek())) return fail(_at == _text.size() ? "the text ends too early" : "expected a value");
    if (take('0')) {
      if (isDigit(peek())) return fail("a number starts with a zero");
    } else {
      skipDigits();
    }
    if (take('.') && !skipDigits()) return fail("expected a digit behind the point");
    if (take('e') || take('E')) {
      if (!take('+')) take('-');
      if (!skipDigits()) return fail("expected a digit in the exponent");
    }
    pushNumber(std::string(_text.substr(first, _at - first)));
    return true;
  }

  void pushNumber(const std::string& token) {
    const char* last = token.data() + token.size();
    std::int64_t integer = 0;
    std::uint64_t natural = 0;
    if (const auto read = std::from_chars(token.data(), last, integer); read.ec == std::errc() && read.ptr == last) {
      push('l', 0);
      _content.words.push_back(std::bit_cast<std::uint64_t>(integer));
    } else if (const auto wide = std::from_chars(token.data(), last, natural);
               wide.ec == std::errc() && wide.ptr == last) {
      push('u', 0);
      _content.words.push_back(natural);
    } else if (const auto real = nearestDouble(token)) {
      push('d', 0);
      _content.words.push_back(std::bit_cast<std::uint64_t>(*real));
    } else {
      pushText('b', token);
    }
  }

  /// Independent of the process's locale, unlike strtod. What is too small for a double is zero, what is too large is
  /// absent.
  static std::optional<double> nearestDouble(const std::string& token) {
    double real = 0;
    const auto read = std::from_chars(token.data(), token.data() + token.size(), real);
    if (read.ec == std::errc()) return real;
    return isBelowOne(token) ? std::optional(token.front() == '-' ? -0.0 : 0.0) : std::nullopt;
  }

  /// Whether a number outside a double's range is so because it is small: the sign of the power of its first digit that
  /// counts.
  static bool isBelowOne(std::string_view token) {
    const std::size_t exponentAt = std::min(token.find_first_of("eE"), token.size());
    const std::string_view mantissa = token.substr(0, exponentAt);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t digit = mantissa.find_first_of("123456789");
    if (digit == std::string_view::npos) return true;
    double exponent = 0;
    if (exponentAt < token.size()) {
      std::string_view power = token.substr(exponentAt + 1);
      const bool negative = power.starts_with('-');
      if (negative || power.starts_with('+')) power.remove_prefix(1);
      for (const char c : power) exponent = exponent * 10 + (c - '0');
      if (negative) exponent = -exponent;
    }
    const double leading = digit < point ? static_cast<double>(point - digit) : -static_cast<double>(digit - point);
    return exponent + leading < 0;
  }

  bool string() {
    ++_at;
    _string.clear();
    while (_at < _text.size()) {
      const auto c = static_cast<unsigned char>(_text[_at]);
      if (c == '"') {
        ++_at;
        pushText('"', _string);
        return true;
      }
      if (c < 0x20) return fail("a control character in a text");
      if (c == '\\') {
        if (!escape()) return false;
        continue;
      }
      const std::size_t first = _at;
      auto next = static_cast<std::int64_t>(_at);
      UChar32 point = 0;
      U8_NEXT(_text.data(), next, static_cast<std::int64_t>(_text.size()), point);
      if (point < 0) return fail("bytes that are no UTF-8");
      _at = static_cast<std::size_t>(next);
      _string.append(_text, first, _at - first);
    }
    return fail("the text ends too early");
  }

  bool escape() {
    ++_at;
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    if (const std::size_t letter = _at < _text.size() ? kLetters.find(_text[_at]) : std::string_view::npos;
        letter != std::string_view::npos) {
      _string += kMeanings[letter];
      ++_at;
      return true;
    }
    UChar32 point = 0;
    if (!codeUnit(point)) return false;
    if (U16_IS_LEAD(point)) {
      UChar32 trail = 0;
      if (!take('\\') || !codeUnit(trail) || !U16_IS_TRAIL(trail)) return fail("half of a surrogate pair");
      point = U16_GET_SUPPLEMENTARY(point, trail);
    } else if (U16_IS_TRAIL(point)) {
      return fail("half of a surrogate pair");
    }
    char encoded[U8_MAX_LENGTH];
    std::size_t length = 0;
    U8_APPEND_UNSAFE(encoded, length, point);
    _string.append(encoded, length);
    return true;
  }

  bool codeUnit(UChar32& unit) {
    if (!take('u') || _text.size() - _at < 4) return fail("an unknown escape");
    const char* first = _text.data() + _at;
    std::uint32_t value = 0;
    const auto read = std::from_chars(first, first + 4, value, 16);
    if (read.ptr != first + 4) return fail("an unknown escape");
    unit = static_cast<UChar32>(value);
    _at += 4;
    return true;
  }

  void pushText(char letter, std::string_view text) {
    push(letter, _content.strings.size());
    const auto length = std::bit_cast<std::array<std::uint8_t, 4>>(static_cast<std::uint32_t>(text.size()));
    _content.strings.insert(_content.strings.end(), length.begin(), length.end());
    _content.strings.insert(_content.strings.end(), text.begin(), text.end());
  }

  std::string_view _text;
  std::size_t _maximumDepth;
  std::size_t _at = 0;
  JSONTapeContent _content;
  std::vector<Container> _open;
  std::string _string;
  JSONFault _fault;
};

}  // namespace

std::expected<JSONTapeContent, JSONFault> parseJSONCarefully(std::string_view text, std::size_t maximumDepth) {
  return CarefulParser(text, maximumDepth).parse();
}

}  // namespace kestrom::foundation::detail

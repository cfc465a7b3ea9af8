#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::foundation {

enum class JSONType : std::uint8_t { null, boolean, number, string, array, object };

/// What is wrong with a text that is no JSON document.
struct JSONSyntaxError {
  /// One line for a person, with line and column where they are known.
  std::string description;

  friend bool operator==(const JSONSyntaxError&, const JSONSyntaxError&) = default;
};

namespace detail {

/// A document as one run of 64-bit words, a letter in the top byte of each: 'n', 't', 'f'; 'l', 'u' and 'd' with the
/// number's bits in the word that follows; '"' and 'b' with the offset of a text in `strings` (32 bits of length, then
/// the bytes; 'b' is a number beyond a double's range, as written); '{' and '[' with the index behind their content in
/// the low 32 bits and the number of members or elements above them, closed by a word of their own. This is the form in
/// which simdjson leaves what it parsed ("tape.md" of its documentation), so that nothing is copied out of it.
struct JSONTape {
  const std::uint64_t* words;
  const std::uint8_t* strings;
};

}  // namespace detail

/// A value inside a `JSONDocument`: a light view that is good as long as the document lives.
class JSONValue {
 public:
  JSONType type() const;
  bool isNull() const { return letter() == 'n'; }
  bool isBoolean() const { return letter() == 't' || letter() == 'f'; }
  bool isNumber() const { return type() == JSONType::number; }
  bool isString() const { return letter() == '"'; }
  bool isArray() const { return letter() == '['; }
  bool isObject() const { return letter() == '{'; }

  /// The boolean; only for type boolean.
  bool boolean() const { return letter() == 't'; }

  /// The unescaped text, valid UTF-8; only for type string.
  std::string_view string() const { return text(); }

  /// The number as a signed 64-bit integer: also 5.0 or 5e1, not 5.5. Absent for other types and what does not fit.
  std::optional<std::int64_t> integer() const;

  /// The number as a double, the nearest one. Absent for other types and for what is beyond a double's range.
  std::optional<double> number() const;

  /// The number in decimal form, only for type number: whole numbers below 2^63 without a point, others in the shortest
  /// form that reads back as the same double; what is beyond a double's range as it was written.
  std::string numberText() const;

  /// Number of elements of an array or members of an object; only for these types.
  std::size_t size() const;

  /// Walks the elements of an array or, in steps of a key and a value, the members of an object.
  class Iterator {
   public:
    JSONValue operator*() const { return {_tape, _index}; }
    Iterator& operator++() {
      _index = JSONValue(_tape, _index).behind();
      return *this;
    }
    bool operator==(const Iterator& other) const { return _index == other._index; }

   private:
    friend class JSONValue;
    Iterator(const detail::JSONTape* tape, std::size_t index) : _tape(tape), _index(index) {}
    const detail::JSONTape* _tape;
    std::size_t _index;
  };

  /// Elements of an array; for an object its keys (as strings) and values by turns. Only for these types.
  Iterator begin() const { return {_tape, _index + 1}; }
  Iterator end() const { return {_tape, behind() - 1}; }

  /// Where the value stands in its document, for a caller that keeps many of them: `at` gives the value back. What
  /// comes later in the text has a greater one.
  std::size_t position() const { return _index; }
  JSONValue at(std::size_t position) const { return {_tape, position}; }

  /// The member of an object with that key, the last one if there are several; absent for other types.
  std::optional<JSONValue> member(std::string_view key) const;

 private:
  friend class JSONDocument;
  JSONValue(const detail::JSONTape* tape, std::size_t index) : _tape(tape), _index(index) {}

  std::uint64_t word() const { return _tape->words[_index]; }
  char letter() const { return static_cast<char>(word() >> 56); }
  std::uint64_t numberBits() const { return _tape->words[_index + 1]; }

  std::string_view text() const {
    const std::uint8_t* at = _tape->strings + (word() & 0x00FFFFFFFFFFFFFF);
    std::uint32_t length;
    std::memcpy(&length, at, sizeof length);
    return {reinterpret_cast<const char*>(at + sizeof length), length};
  }

  std::size_t behind() const {
    switch (letter()) {
      case '{':
      case '[':
        return static_cast<std::uint32_t>(word());
      case 'l':
      case 'u':
      case 'd':
        return _index + 2;
      default:
        return _index + 1;
    }
  }

  const detail::JSONTape* _tape;
  std::size_t _index;
};

/// A parsed JSON document (RFC 8259), read only. Owns all that its values point to. Movable; may be shared between
/// threads.
class JSONDocument {
 public:
  /// Bytes that a document may have. A template of this size has more than a hundred thousand nodes, far more than
  /// anybody answers; the bound keeps the memory of a parse below about half a gibibyte.
  static constexpr std::size_t kMaximumSize = std::size_t{64} << 20;
  /// Containers within each other: five for each level of a template at its deepest nesting, and room to spare.
  static constexpr std::size_t kMaximumDepth = 8192;

  /// Parses one whole document in UTF-8. Any fault of the text is an error, also in places that nobody reads.
  static std::expected<JSONDocument, JSONSyntaxError> parse(std::string_view text);

  JSONDocument(JSONDocument&&) noexcept;
  JSONDocument& operator=(JSONDocument&&) noexcept;
  ~JSONDocument();

  JSONValue root() const;

 private:
  struct Storage;

  explicit JSONDocument(std::unique_ptr<Storage> storage);

  std::unique_ptr<Storage> _storage;
};

}  // namespace kestrom::foundation

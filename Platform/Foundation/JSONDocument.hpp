#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

enum class JSONType : std::uint8_t { null, boolean, number, string, array, object };

/// What is wrong with a text that is no JSON document.
struct JSONSyntaxError {
  /// One line for a person, with line and column where they are known.
  std::string description;
};

namespace detail {

/// One value of a document, in the order of the text; a container's content follows it directly.
struct JSONNode {
  union {
    const char* text;    ///< string (unescaped) or number (as written): its first byte
    std::uint64_t next;  ///< array or object: index of the node behind its content
  };
  std::uint32_t size;  ///< bytes of `text`; elements of an array; members of an object; 1 for true
  JSONType type;
};

}  // namespace detail

/// A value inside a `JSONDocument`: a light view that is good as long as the document lives.
class JSONValue {
 public:
  JSONType type() const { return _node->type; }
  bool isNull() const { return type() == JSONType::null; }

  /// The boolean; only for type boolean.
  bool boolean() const { return _node->size != 0; }

  /// The unescaped text, valid UTF-8; only for type string.
  std::string_view string() const { return {_node->text, _node->size}; }

  /// The number as it was written; only for type number.
  std::string_view numberText() const { return {_node->text, _node->size}; }

  /// The number as a signed 64-bit integer: also 5.0 or 5e1, not 5.5. Absent for other types and what does not fit.
  std::optional<std::int64_t> integer() const;

  /// The number as a double, the nearest one. Absent for other types and for what is beyond a double's range.
  std::optional<double> number() const;

  /// Number of elements of an array or members of an object; only for these types.
  std::size_t size() const { return _node->size; }

  /// Walks the elements of an array or, in steps of a key and a value, the members of an object.
  class Iterator {
   public:
    JSONValue operator*() const { return JSONValue(_node, _base); }
    Iterator& operator++() {
      _node = JSONValue(_node, _base).behind();
      return *this;
    }
    bool operator==(const Iterator& other) const { return _node == other._node; }

   private:
    friend class JSONValue;
    Iterator(const detail::JSONNode* node, const detail::JSONNode* base) : _node(node), _base(base) {}
    const detail::JSONNode* _node;
    const detail::JSONNode* _base;
  };

  /// Elements of an array; for an object its keys (as strings) and values by turns.
  Iterator begin() const { return {_node + 1, _base}; }
  Iterator end() const { return {behind(), _base}; }

  /// The member of an object with that key, the last one if there are several; absent for other types.
  std::optional<JSONValue> member(std::string_view key) const;

 private:
  friend class JSONDocument;
  JSONValue(const detail::JSONNode* node, const detail::JSONNode* base) : _node(node), _base(base) {}

  const detail::JSONNode* behind() const {
    return type() == JSONType::array || type() == JSONType::object ? _base + _node->next : _node + 1;
  }

  const detail::JSONNode* _node;
  const detail::JSONNode* _base;
};

/// A parsed JSON document (RFC 8259), read only. Owns all that its values point to. Movable; may be shared between threads.
class JSONDocument {
 public:
  /// Bytes that a document may have. A template of this size has more than a hundred thousand nodes, far more than anybody
  /// answers; the bound keeps the memory of a parse below about half a gibibyte.
  static constexpr std::size_t kMaximumSize = std::size_t{64} << 20;
  /// Containers within each other: five for each level of a template at its deepest nesting, and room to spare.
  static constexpr std::size_t kMaximumDepth = 8192;

  /// Parses one whole document in UTF-8. Any fault of the text is an error, also in places that nobody reads.
  static std::expected<JSONDocument, JSONSyntaxError> parse(std::string_view text);

  JSONDocument(JSONDocument&&) noexcept;
  JSONDocument& operator=(JSONDocument&&) noexcept;
  ~JSONDocument();

  JSONValue root() const { return {_nodes.data(), _nodes.data()}; }

 private:
  struct Storage;

  JSONDocument(std::unique_ptr<Storage> storage, std::vector<detail::JSONNode> nodes);

  std::unique_ptr<Storage> _storage;
  std::vector<detail::JSONNode> _nodes;
};

}  // namespace kestrom::foundation

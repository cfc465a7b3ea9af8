#pragma once

#include "Kestrom/Platform/Date.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

/// Why a document is no record of the wanted kind.
struct DecodingError {
  enum class Kind : std::uint8_t {
    syntax,          ///< the text is no JSON
    typeMismatch,    ///< a value of another JSON type, or of none of the forms that are allowed
    keyNotFound,     ///< a required key is missing; the path ends with it
    valueNotFound,   ///< null where a value is required
    dataCorrupted,   ///< the right type, but no allowed content
    nestingTooDeep,  ///< lists within lists beyond the limit
  };

  Kind kind = Kind::syntax;
  /// Where in the document, like "sequence[3].options.values[0].key"; empty for the document itself.
  std::string path;
  /// One sentence for a person.
  std::string description;

  friend bool operator==(const DecodingError&, const DecodingError&) = default;
};

/// What a decoder must know beside the bytes.
struct DecodingOptions {
  /// How dates are read.
  enum class Dates : std::uint8_t {
    secondsSinceReferenceDate,
    /// The text form of answers on the wire, "yyyy-MM-dd'T'HH:mm:ss.SSSZ".
    answers,
    /// "yyyy-MM-dd HH:mm:ss" in the locale and the time zone that the device had at the first such date.
    dateAndTime,
  };

  Dates dates = Dates::secondsSinceReferenceDate;
  /// The present documents directory, onto which local file addresses in stored texts are moved.
  URL documentsDirectory = URL::fromFilePath("/");
  /// Go on behind an error, to tell every one of a document, up to `DecodingContext::kMaximumErrors`.
  bool collectAllErrors = false;
};

/// One run of decoding: where it is, what went wrong, and the lists that wait for their turn.
/// Lists that hold records of their own kind are not decoded in place but deferred, so that depth costs no stack; the
/// run still goes through the document depth first. Used by one thread.
class DecodingContext {
 public:
  /// Errors that one run collects. Nobody mends more at a time, and a document of nothing but errors would fill the
  /// memory with their paths.
  static constexpr std::size_t kMaximumErrors = 10'000;

  using DecodeElement = void (*)(void* list, JSONValue element, DecodingContext& context);

  explicit DecodingContext(const DecodingOptions& options) : _options(options) { _path.reserve(64); }

  const DecodingOptions& options() const { return _options; }
  std::vector<DecodingError>& errors() { return _errors; }

  /// True when the rest of the record need not be read any more.
  bool isStopped() const {
    return !_errors.empty() && (_attempts > 0 || !_options.collectAllErrors || _errors.size() >= kMaximumErrors);
  }

  /// Notes an error at the present place, or at the member `key` of it.
  void fail(DecodingError::Kind kind, std::string description, std::string_view key = {});

  void enterKey(std::string_view key) { _path.push_back({key, 0}); }
  void enterIndex(std::size_t index) { _path.push_back({{}, index}); }
  void leave() { _path.pop_back(); }

  /// Runs `decode` as one of several forms: true when it went without an error; its errors are dropped.
  template <class Decode>
  bool attempt(Decode decode) {
    std::vector<DecodingError> before = std::move(_errors);
    _errors.clear();
    ++_attempts;
    decode();
    --_attempts;
    const bool succeeded = _errors.empty();
    _errors = std::move(before);
    return succeeded;
  }

  /// Decodes the elements of `array` into `list` once the present element is done; each element, with all that it
  /// defers itself, before the next one. So `list` may move its elements as it grows, but must itself stay where it is
  /// until then. `maximumNesting` bounds lists that hold lists of their own kind; without it the list counts as no
  /// level.
  void defer(JSONValue array, void* list, DecodeElement decodeElement,
             std::optional<std::size_t> maximumNesting = std::nullopt);

  /// Decodes what was deferred, and what that defers, until nothing is left or the run has stopped.
  void runDeferred();

 private:
  struct PathComponent {
    std::string_view key;
    std::size_t index;
  };
  struct DeferredList {
    JSONValue::Iterator next;
    JSONValue::Iterator end;
    void* list;
    DecodeElement decodeElement;
    std::size_t index;
    std::size_t level;
    /// The path to the list: how much of its parent's stays, and what follows.
    std::size_t sharedPath;
    std::vector<PathComponent> ownPath;
  };

  std::string pathText() const;

  const DecodingOptions& _options;
  std::vector<PathComponent> _path;
  std::vector<DecodingError> _errors;
  std::vector<DeferredList> _deferred;
  std::size_t _level = 0;
  std::size_t _elementPath = 0;
  int _attempts = 0;
};

}  // namespace kestrom::foundation

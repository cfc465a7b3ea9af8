#pragma once

#include "Kestrom/Platform/Date.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// How dates are written and read: as the number of seconds since 2001 (the plain coders), or as text.
enum class DateStrategy : std::uint8_t { secondsSinceReferenceDate, iso8601 };

/// Writes compact JSON in UTF-8, one call a piece, in the order of the text; commas and colons come by themselves.
/// A value of its own on one thread. Text that is no UTF-8 is written with U+FFFD in place of what is broken.
class JSONWriter {
 public:
  explicit JSONWriter(DateStrategy dates = DateStrategy::secondsSinceReferenceDate) : _dates(dates) {}

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }
  /// The key of the member whose value is written next.
  void key(std::string_view name);

  void string(std::string_view text);
  void integer(std::int64_t value);
  /// Whole numbers below 2^63 without a point, others in the shortest form. JSON has no form for what is not finite:
  /// null.
  void number(double value);
  void boolean(bool value);
  void null();
  void date(Date value);
  /// A value of a parsed document, with its members in their order.
  void value(JSONValue value);

  /// False once a number was written that JSON has no form for: the text does not say what the value was.
  bool isFaithful() const { return _isFaithful; }

  /// The text so far.
  const std::string& text() const& { return _text; }
  std::string text() && { return std::move(_text); }

 private:
  void open(char bracket);
  void close(char bracket);
  void separate();

  std::string _text;
  DateStrategy _dates;
  bool _needsComma = false;
  bool _isFaithful = true;
};

}  // namespace kestrom::foundation

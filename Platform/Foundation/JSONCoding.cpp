#include "Platform/Foundation/JSONCoding.hpp"

#include "Platform/Foundation/DateFormatter.hpp"
#include "Platform/Foundation/DateText.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kestrom::foundation {

namespace {

std::string_view nameOf(JSONType type) {
  switch (type) {
    case JSONType::null:
      return "null";
    case JSONType::boolean:
      return "a boolean";
    case JSONType::number:
      return "a number";
    case JSONType::string:
      return "a string";
    case JSONType::array:
      return "a list";
    case JSONType::object:
      return "an object";
  }
  return "";
}

/// More members than any record has; a table that outgrows it does not compile into a wrong decoder but stops at once.
constexpr std::size_t kMaximumFields = 32;

/// Made once, as a formatter costs far more than a date, and never destroyed: threads may run while the process ends.
const DateFormatter& dateAndTimeFormatter() {
  static const auto* const kFormatter = new DateFormatter("yyyy-MM-dd HH:mm:ss");
  return *kFormatter;
}

}  // namespace

void failType(DecodingContext& context, JSONValue value, std::string_view wanted) {
  if (value.isNull()) {
    context.fail(DecodingError::Kind::valueNotFound, "expected " + std::string(wanted) + ", found null");
  } else {
    context.fail(DecodingError::Kind::typeMismatch,
                 "expected " + std::string(wanted) + ", found " + std::string(nameOf(value.type())));
  }
}

void decodeFields(std::span<const FieldCoding> fields, void* record, JSONValue value, DecodingContext& context) {
  if (!value.isObject()) return failType(context, value, "an object");

  // The members in the order of the table, so that errors come in that order too. A document mostly has its keys in one
  // order, so the search starts behind the last hit; of equal keys the last one counts.
  constexpr std::size_t kAbsent = 0;
  std::array<std::size_t, kMaximumFields> found;
  std::fill_n(found.begin(), fields.size(), kAbsent);
  std::size_t next = 0;
  const auto end = value.end();
  for (auto member = value.begin(); member != end; ++member) {
    const std::string_view key = (*member).string();
    ++member;
    for (std::size_t tried = 0; tried < fields.size(); ++tried) {
      const std::size_t index = next < fields.size() ? next : 0;
      next = index + 1;
      const std::string_view known = fields[index].key;
      if (known.size() == key.size() && std::memcmp(known.data(), key.data(), key.size()) == 0) {
        found[index] = (*member).position();
        break;
      }
    }
  }

  for (std::size_t index = 0; index < fields.size(); ++index) {
    const FieldCoding& field = fields[index];
    if (found[index] == kAbsent) {
      if (field.isRequired) {
        context.fail(DecodingError::Kind::keyNotFound, "required key \"" + std::string(field.key) + "\" is missing",
                     field.key);
      }
    } else if (const JSONValue content = value.at(found[index]); field.isRequired || !content.isNull()) {
      context.enterKey(field.key);
      field.decode(record, content, context);
      context.leave();
    }
    if (context.isStopped()) return;
  }
}

void encodeFields(std::span<const FieldCoding> fields, const void* record, JSONWriter& writer) {
  writer.beginObject();
  for (const FieldCoding& field : fields) field.encode(record, field.key, writer);
  writer.endObject();
}

void Coder<std::string>::decode(std::string& out, JSONValue value, DecodingContext& context) {
  if (!value.isString()) return failType(context, value, "a string");
  out.assign(value.string());
}

void Coder<bool>::decode(bool& out, JSONValue value, DecodingContext& context) {
  if (!value.isBoolean()) return failType(context, value, "a boolean");
  out = value.boolean();
}

void Coder<std::int64_t>::decode(std::int64_t& out, JSONValue value, DecodingContext& context) {
  if (!value.isNumber()) return failType(context, value, "an integer");
  const auto number = value.integer();
  if (!number) {
    return context.fail(DecodingError::Kind::dataCorrupted,
                        "the number " + value.numberText() + " is no 64-bit integer");
  }
  out = *number;
}

void Coder<double>::decode(double& out, JSONValue value, DecodingContext& context) {
  if (!value.isNumber()) return failType(context, value, "a number");
  const auto number = value.number();
  if (!number) {
    return context.fail(DecodingError::Kind::dataCorrupted, "the number " + value.numberText() + " is beyond a double");
  }
  out = *number;
}

void Coder<Date>::decode(Date& out, JSONValue value, DecodingContext& context) {
  if (context.options().dates == DecodingOptions::Dates::secondsSinceReferenceDate) {
    Coder<double>::decode(out.secondsSinceReferenceDate, value, context);
    // The farthest moment whose milliseconds are still told apart.
    constexpr double kFarthest = 9e12;
    if (std::abs(out.secondsSinceReferenceDate) > kFarthest) {
      context.fail(DecodingError::Kind::dataCorrupted, "the number " + value.numberText() + " is no moment");
    }
    return;
  }
  if (!value.isString()) return failType(context, value, "a date text");
  const bool isAnswer = context.options().dates == DecodingOptions::Dates::answers;
  const auto date = isAnswer ? parseAnswerDate(value.string()) : dateAndTimeFormatter().date(value.string());
  if (!date) {
    return context.fail(DecodingError::Kind::dataCorrupted,
                        isAnswer ? "the text is no date of the form yyyy-MM-dd'T'HH:mm:ss.SSSZ"
                                 : "the text is no date of the form yyyy-MM-dd HH:mm:ss");
  }
  out = *date;
}

void Coder<URL>::decode(URL& out, JSONValue value, DecodingContext& context) {
  if (!value.isString()) return failType(context, value, "a URL");
  auto url = URL::parse(value.string());
  if (!url) return context.fail(DecodingError::Kind::dataCorrupted, "the text is no URL");
  out = std::move(*url);
}

}  // namespace kestrom::foundation

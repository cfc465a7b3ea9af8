#include "Apps/sandbox/BodyRecords.hpp"

#include "Platform/Foundation/DateText.hpp"

namespace kestrom::foundation {

void Coder<sandbox::DateText>::decode(sandbox::DateText&, JSONValue value, DecodingContext& context) {
  if (!value.isString()) return failType(context, value, "a string");
  if (!parseISO8601(value.string())) context.fail(DecodingError::Kind::dataCorrupted, "no date in ISO 8601");
}

}  // namespace kestrom::foundation

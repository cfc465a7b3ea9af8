#include "Platform/Foundation/ListFormatter.hpp"

#include "Platform/Foundation/FatalError.hpp"

#include <unicode/listformatter.h>

#include <vector>

namespace kestrom::foundation {

struct ListFormatter::Formatter {
  std::unique_ptr<icu::ListFormatter> icu;
};

ListFormatter::ListFormatter(const std::string& locale) : _formatter(std::make_unique<Formatter>()) {
  UErrorCode error = U_ZERO_ERROR;
  _formatter->icu.reset(icu::ListFormatter::createInstance(icu::Locale(locale.c_str()), error));
  if (U_FAILURE(error)) fatalError("Cannot create a list formatter for " + locale);
}

ListFormatter::~ListFormatter() = default;
ListFormatter::ListFormatter(ListFormatter&&) noexcept = default;
ListFormatter& ListFormatter::operator=(ListFormatter&&) noexcept = default;

std::string ListFormatter::string(std::span<const std::string> texts) const {
  std::vector<icu::UnicodeString> items;
  items.reserve(texts.size());
  for (const std::string& text : texts) items.push_back(icu::UnicodeString::fromUTF8(text));
  icu::UnicodeString joined;
  UErrorCode error = U_ZERO_ERROR;
  _formatter->icu->format(items.data(), static_cast<std::int32_t>(items.size()), joined, error);
  std::string result;
  if (U_SUCCESS(error)) joined.toUTF8String(result);
  return result;
}

}  // namespace kestrom::foundation

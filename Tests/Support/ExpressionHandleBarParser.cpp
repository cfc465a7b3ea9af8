#include "Tests/Support/ExpressionHandleBarParser.hpp"

#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <cstdlib>
#include <memory>
#include <ranges>
#include <vector>

namespace kestrom::tests {

namespace {

struct Match {
  std::size_t start;
  std::size_t end;
  std::string_view content;
};

std::vector<Match> matches(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  UText* opened = utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error);
  icu::RegexMatcher matcher(UNICODE_STRING_SIMPLE("\\{\\{\\{?(.*?)\\}\\}\\}?"), 0, error);
  matcher.reset(opened);
  std::vector<Match> found;
  while (matcher.find(error)) {
    const auto start = static_cast<std::size_t>(matcher.start64(error));
    const auto contentStart = static_cast<std::size_t>(matcher.start64(1, error));
    const auto contentEnd = static_cast<std::size_t>(matcher.end64(1, error));
    found.push_back(
        {start, static_cast<std::size_t>(matcher.end64(error)), text.substr(contentStart, contentEnd - contentStart)});
  }
  utext_close(opened);
  if (U_FAILURE(error)) std::abort();
  return found;
}

std::string trimmed(std::string_view text) {
  const auto points = icu::UnicodeString::fromUTF8(text);
  const auto isBlank = [&](std::int32_t at) {
    return points[at] == '\t' || u_charType(points[at]) == U_SPACE_SEPARATOR;
  };
  std::int32_t start = 0;
  std::int32_t end = points.length();
  while (start < end && isBlank(start)) ++start;
  while (end > start && isBlank(end - 1)) --end;
  std::string result;
  return points.tempSubStringBetween(start, end).toUTF8String(result);
}

}  // namespace

std::string parsedByExpression(std::string_view text, const PathLookup& lookUp) {
  std::string result(text);
  for (const Match& match : matches(text) | std::views::reverse) {
    if (const auto filled = lookUp(trimmed(match.content))) {
      result.replace(match.start, match.end - match.start, *filled);
    }
  }
  return result;
}

}  // namespace kestrom::tests

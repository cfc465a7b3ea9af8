#include "Apps/kestrom/IndentedJSON.hpp"
#include "Apps/kestrom/PrintableText.hpp"

#include <gtest/gtest.h>

namespace kestrom::app {
namespace {

using namespace std::string_view_literals;

TEST(PrintableText, LeavesNothingForATerminalToObey) {
  struct Row {
    std::string_view label, text, want;
  };
  const Row rows[] = {
      {"colour", "a\x1b[31mb"sv, "a\\x1b[31mb"},
      {"NUL, bell, delete", "\0\a\x7f"sv, "\\x00\\x07\\x7f"},
      {"return and tab", "a\r\tb"sv, "a\\r\\tb"},
      {"line break", "a\nb"sv, "a\\nb"},
      {"one-byte control sequence introducer",
       "\xC2\x9B"
       "31m"sv,
       "\\x9b31m"},
      {"the same as a bare byte",
       "\x9B"
       "31m"sv,
       "\uFFFD"
       "31m"},
      {"text beyond ASCII", "\u00A0\u00E9\u20AC\U0001F600"sv, "\u00A0\u00E9\u20AC\U0001F600"},
      {"overlong escape character", "\xC0\x9B"sv, "\uFFFD\uFFFD"},
      {"surrogate", "\xED\xA0\x80"sv, "\uFFFD\uFFFD\uFFFD"},
      {"cut short", "\xF0\x9F\x98"sv, "\uFFFD\uFFFD\uFFFD"},
      {"beyond the last character", "\xF4\x90\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(printableText(row.text, LineBreaks::escape), row.want) << row.label;
    EXPECT_EQ(isUTF8(row.text), row.want.find("\uFFFD") == std::string_view::npos) << row.label;
  }
  EXPECT_EQ(printableText("a\n\x1b", LineBreaks::keep), "a\n\\x1b");
}

TEST(IndentedJSON, BreaksBetweenMembersAndNowhereElse) {
  EXPECT_EQ(indentedJSON(R"({"a":[1,{"b":"x,{\"]\\"}],"c":{},"d":[],"e":null})"), R"({
  "a": [
    1,
    {
      "b": "x,{\"]\\"
    }
  ],
  "c": {},
  "d": [],
  "e": null
})");
}

}  // namespace
}  // namespace kestrom::app

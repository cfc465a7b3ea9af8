#include "Core/Services/Bot/HandleBarParser.hpp"

#include "Tests/Support/ExpressionHandleBarParser.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::JSONDocument;

HandleBarParser parserOf(std::string_view json) {
  auto document = JSONDocument::parse(json);
  EXPECT_TRUE(document) << json;
  return HandleBarParser(std::make_shared<const JSONDocument>(std::move(*document)));
}

struct Row {
  std::string_view label;
  std::string_view text;
  std::string_view want;
};

TEST(HandleBarParser, FindsPlaceholders) {
  const HandleBarParser parser = parserOf(R"({"name":"Ann"})");
  const Row rows[] = {
      {"no placeholder", "Hello { Ann }, }} {{", "Hello { Ann }, }} {{"},
      {"blanks inside", "Hello {{ user.name }}!", "Hello Ann!"},
      {"wide blanks and a tab", "{{\t\u3000user.name\u00A0}}", "Ann"},
      {"three braces", "{{{user.name}}}", "Ann"},
      {"two and three", "{{user.name}}} {{{user.name}}", "Ann Ann"},
      {"four and four: a brace stays, one is content", "{{{{user.name}}}}", "Ann}"},
      {"side by side", "{{x.name}}{{y.name}}", "AnnAnn"},
      {"unresolved before resolved", "{{x.surname}} {{x.name}} {{x.surname}}", "{{x.surname}} Ann {{x.surname}}"},
      {"content that opens braces", "{{x.a {{x.name}} b", "{{x.a {{x.name}} b"},
      {"single closing brace in it", "{{x.na}me}} {{x.name}}", "{{x.na}me}} Ann"},
      {"broken line", "{{x.\nname}} {{x.name}}", "{{x.\nname}} Ann"},
      {"line ends between", "{{x.na\u2028me}} {{x.name}}\u0085{{x.name", "{{x.na\u2028me}} Ann\u0085{{x.name"},
      {"neighbours of the line terminators", "{{x.\u2027}}{{x.\u202A}}{{x.\u0086}}",
       "{{x.\u2027}}{{x.\u202A}}{{x.\u0086}}"},
      {"nothing opened", "}}", "}}"},
      {"empty text", "", ""},
  };
  for (const Row& row : rows) EXPECT_EQ(parser.parse(row.text), row.want) << row.label;
}

TEST(HandleBarParser, ResolvesPaths) {
  const HandleBarParser parser = parserOf(R"({"a":{"b":"text","list":[1,{"c":2}],"empty":""},"":"no key","ä":"ö"})");
  const Row rows[] = {
      {"first piece is not looked at", "{{case.a.b}} {{x.a.b}}", "text text"},
      {"empty pieces are dropped", "{{..x..a.b.}}", "text"},
      {"empty value", "[{{x.a.empty}}]", "[]"},
      {"beyond ASCII", "{{x.ä}}", "ö"},
      {"into a string", "{{x.a.b.c}}", "{{x.a.b.c}}"},
      {"into a list", "{{x.a.list.0}}", "{{x.a.list.0}}"},
      {"absent stays absent", "{{x.no.a.b}}", "{{x.no.a.b}}"},
      {"blanks around a dot belong to the piece", "{{x. a.b}}", "{{x. a.b}}"},
      {"other case", "{{x.A.b}}", "{{x.A.b}}"},
  };
  for (const Row& row : rows) EXPECT_EQ(parser.parse(row.text), row.want) << row.label;

  for (const std::string_view whole : {"{{}}", "{{{ }}}", "{{a}}", "{{...}}"}) {
    EXPECT_EQ(parser.parse(whole), R"({"a":{"b":"text","list":[1,{"c":2}],"empty":""},"":"no key","ä":"ö"})");
    EXPECT_EQ(HandleBarParser(nullptr).parse(whole), "{}");
    EXPECT_EQ(parserOf("[1]").parse(whole), "{}");
  }
  EXPECT_EQ(HandleBarParser(nullptr).parse("{{x.a}}"), "{{x.a}}");
}

TEST(HandleBarParser, RendersEveryKindOfValue) {
  const Row rows[] = {
      {"boolean", "true", "true"},
      {"null", "null", "null"},
      {"whole number", "12", "12"},
      {"whole number with a point", "-12.0", "-12"},
      {"largest unsigned", "18446744073709551615", "18446744073709551615"},
      {"whole number by an exponent", "5e3", "5000"},
      {"fraction", "0.10", "0.1"},
      {"tiny", "0.0000001", "1e-07"},
      {"beyond a double", "1e400", "1e400"},
      {"list", R"([1, "a\n", {"b": null}])", R"([1,"a\n",{"b":null}])"},
      {"text with braces is not parsed again", R"("{{x.v}}")", "{{x.v}}"},
  };
  for (const Row& row : rows) {
    const HandleBarParser parser = parserOf(R"({"v":)" + std::string(row.text) + "}");
    EXPECT_EQ(parser.parse("<{{x.v}}>"), "<" + std::string(row.want) + ">") << row.label;
  }
}

TEST(HandleBarParser, MatchesAsTheExpressionDoes) {
  const std::string json = R"({"a":"A","b":{"a":"BA"}})";
  const HandleBarParser parser = parserOf(json);
  const std::map<std::vector<std::string>, std::string> values = {
      {{}, json}, {{"a"}, "A"}, {{"b"}, R"({"a":"BA"})"}, {{"b", "a"}, "BA"}};
  const auto lookUp = [&](std::string_view path) -> std::optional<std::string> {
    std::vector<std::string> pieces(1);
    for (const char c : path) {
      if (c != '.') {
        pieces.back() += c;
      } else if (!pieces.back().empty()) {
        pieces.emplace_back();
      }
    }
    if (pieces.back().empty()) pieces.pop_back();
    if (!pieces.empty()) pieces.erase(pieces.begin());
    const auto found = values.find(pieces);
    return found == values.end() ? std::nullopt : std::optional(found->second);
  };

  const std::vector<std::string> alphabet = {"{",      "{{",     "{{",   "{{{",  "}",      "}}", "}}",     "}}}",
                                             "x.a",    "x.b.a",  "x.b",  ".",    " ",      "\t", "a",      "\u00A0",
                                             "\u3000", "\n",     "\r\n", "\v",   "\f",     "\r", "\u0085", "\u2028",
                                             "\u2029", "\u200B", "\x1C", "\x1F", "\u00C2", "â",  "😀"};
  std::mt19937 random(20240607);
  const auto below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
  std::size_t filled = 0;
  for (int round = 0; round < 40'000; ++round) {
    // Few line breaks in one half of the texts: else hardly a placeholder would close.
    const std::size_t letters = round % 2 == 0 ? alphabet.size() : 17;
    std::string text;
    for (std::size_t length = below(24); length > 0; --length) text += alphabet[below(letters)];
    const std::string want = tests::parsedByExpression(text, lookUp);
    ASSERT_EQ(parser.parse(text), want) << testing::PrintToString(text);
    filled += want != text;
  }
  EXPECT_GT(filled, 5'000U);
}

/// A case may nest as deep as its parser allows, and must not cost as much stack.
TEST(HandleBarParser, RendersADeepCase) {
  std::string json;
  for (int level = 0; level < 4'000; ++level) json += R"({"a":[)";
  for (int level = 0; level < 4'000; ++level) json += "]}";
  EXPECT_TRUE(parserOf(json).parse("{{}}") == json);
}

/// Each of these would take hours if what does not close were searched again from each brace.
TEST(HandleBarParser, TakesTextsOfBracesInOnePass) {
  constexpr std::size_t kSize = 5'000'000;
  const HandleBarParser parser = parserOf(R"({"a":"A"})");
  for (const std::string_view piece : {"{{", "{{{x ", "{{x}", "{{\n", "{{x}\u2028"}) {
    std::string open;
    while (open.size() < kSize) open += piece;
    EXPECT_TRUE(parser.parse(open) == open) << piece;
    EXPECT_TRUE(parser.parse(open + "\n{{x.a}}") == open + "\nA") << piece;
  }
}

}  // namespace
}  // namespace kestrom::services

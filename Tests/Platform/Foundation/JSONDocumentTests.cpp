#include "Platform/Foundation/JSONDocument.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <gtest/gtest.h>

namespace kestrom::foundation {
namespace {

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

/// What a document reads back as; "error" for one that is refused.
std::string roundTrip(std::string_view text) {
  const auto document = JSONDocument::parse(text);
  if (!document) return "error";
  JSONWriter writer;
  writer.value(document->root());
  return std::move(writer).text();
}

TEST(JSONDocument, ReadsWhatTheGrammarAllowsAndRefusesTheRest) {
  struct Row {
    std::string_view label;
    std::string_view text;
    std::string_view want;
  };
  using namespace std::string_view_literals;
  const Row rows[] = {
      {"blanks", " \t\r\n{ \"a\" : [ 1 , true , null ] } ", R"({"a":[1,true,null]})"},
      {"a bare text", R"("x")", R"("x")"},
      {"empty containers", R"([{},[]])", "[{},[]]"},
      {"escapes", R"("\u00e9\n\"\\\/\ud83d\ude00\u0001")", "\"é\\n\\\"\\\\/😀\\u0001\""},
      {"order and repeated keys stay", R"({"b":1,"a":2,"b":3})", R"({"b":1,"a":2,"b":3})"},
      {"no text", "", "error"},
      {"blanks only", "  ", "error"},
      {"comma at the end", "[1,]", "error"},
      {"comma missing", "[1 2]", "error"},
      {"colon missing", R"({"a" 1})", "error"},
      {"key without quotes", "{a:1}", "error"},
      {"brackets crossed", "[1}", "error"},
      {"cut short", R"({"a":[1,2)", "error"},
      {"two documents", "{} {}", "error"},
      {"literal cut short", "[tru]", "error"},
      {"leading zero", "[01]", "error"},
      {"point without digits", "[1.]", "error"},
      {"not a number", "[NaN]", "error"},
      {"control character in a text", "[\"a\nb\"]", "error"},
      {"NUL in a text", "[\"a\0b\"]"sv, "error"},
      {"NUL behind the document", "[]\0"sv, "error"},
      {"no UTF-8", "[\"\xC3\x28\"]", "error"},
      {"half of a surrogate pair", R"(["\ud83d"])", "error"},
      {"comment", "[1] // one", "error"},
  };
  for (const Row& row : rows) EXPECT_EQ(roundTrip(row.text), row.want) << row.label;
}

TEST(JSONDocument, KeepsNumbersBeyondTheFastPathsRange) {
  struct Row {
    std::string_view text;
    std::optional<std::int64_t> integer;
    std::optional<double> number;
    std::string_view rendered;
  };
  const Row rows[] = {
      {"5", 5, 5.0, "5"},
      {"-0", 0, 0.0, "0"},
      {"5.0", 5, 5.0, "5"},
      {"5e1", 50, 50.0, "50"},
      {"5.5", std::nullopt, 5.5, "5.5"},
      {"0.1", std::nullopt, 0.1, "0.1"},
      {"9223372036854775807", INT64_MAX, 9223372036854775808.0, "9223372036854775807"},
      {"-9223372036854775808", INT64_MIN, -9223372036854775808.0, "-9223372036854775808"},
      {"9223372036854775808", std::nullopt, 9223372036854775808.0, "9223372036854775808"},
      {"-9223372036854775809", std::nullopt, -9223372036854775808.0, "-9223372036854775808"},
      {"100000000000000000000", std::nullopt, 1e20, "1e+20"},
      {"1e400", std::nullopt, std::nullopt, "1e400"},
      {"-1e400", std::nullopt, std::nullopt, "-1e400"},
      {"1e-400", 0, 0.0, "0"},
  };
  for (const Row& row : rows) {
    const std::string text = "[" + std::string(row.text) + "]";
    const auto document = JSONDocument::parse(text);
    ASSERT_TRUE(document) << row.text;
    const JSONValue value = *document->root().begin();
    EXPECT_EQ(value.type(), JSONType::number) << row.text;
    EXPECT_EQ(value.integer(), row.integer) << row.text;
    EXPECT_EQ(value.number(), row.number) << row.text;
    EXPECT_EQ(value.numberText(), row.rendered) << row.text;
  }
}

TEST(JSONDocument, TheCarefulPathReadsTheWholeDocumentLikeTheFastOne) {
  const std::string content = R"("a":{"b":["x\u00e9",true,false,null,-7,18446744073709551615,0.25],"c":{}},"a":[])";
  const auto fast = JSONDocument::parse("{" + content + "}");
  const auto careful = JSONDocument::parse("{" + content + R"(,"big":1e999})");
  ASSERT_TRUE(fast && careful);
  JSONWriter want;
  want.value(fast->root());
  JSONWriter got;
  got.value(careful->root());
  EXPECT_EQ(got.text(), want.text().substr(0, want.text().size() - 1) + R"(,"big":1e999})");
  EXPECT_EQ(careful->root().size(), 3u);
  EXPECT_EQ(careful->root().member("a")->type(), JSONType::array) << "the last of equal keys counts";
  EXPECT_FALSE(careful->root().member("b"));
}

TEST(JSONDocument, TellsWhereATextIsBroken) {
  const auto document = JSONDocument::parse("{\n  \"é\": [1,\n  tru]}");
  ASSERT_FALSE(document);
  EXPECT_NE(document.error().description.find("line 3, column "), std::string::npos) << document.error().description;
}

TEST(JSONDocument, BoundsDepthAndSize) {
  const std::size_t deep = JSONDocument::kMaximumDepth;
  EXPECT_EQ(roundTrip(repeated("[", deep) + repeated("]", deep)), repeated("[", deep) + repeated("]", deep));
  EXPECT_EQ(roundTrip(repeated("[", 1'000'000) + repeated("]", 1'000'000)), "error");
  EXPECT_EQ(roundTrip(repeated(R"({"a":)", 1'000'000)), "error");

  const auto huge = JSONDocument::parse(std::string(JSONDocument::kMaximumSize + 1, ' '));
  ASSERT_FALSE(huge);
  EXPECT_NE(huge.error().description.find("the limit is"), std::string::npos);
}

TEST(JSONWriter, WritesTextThatReadsBackAndReplacesWhatIsNoUTF8) {
  JSONWriter writer;
  writer.beginObject();
  writer.key("k\"");
  writer.beginArray();
  writer.string("tab\t, quote\", é, \x7f");
  writer.string("\xFF\xC3");
  writer.number(1700000000000.0);
  writer.number(0.1);
  writer.number(1e300);
  writer.number(std::numeric_limits<double>::infinity());
  writer.endArray();
  writer.key("empty");
  writer.beginObject();
  writer.endObject();
  writer.endObject();
  EXPECT_EQ(writer.text(),
            "{\"k\\\"\":[\"tab\\t, quote\\\", é, \x7f\",\"\xEF\xBF\xBD\xEF\xBF\xBD\",1700000000000,0.1,"
            "1e+300,null],\"empty\":{}}");
  EXPECT_EQ(roundTrip(writer.text()), writer.text());
}

}  // namespace
}  // namespace kestrom::foundation

#include "Core/Models/BotTemplateCoding.hpp"

#include "Tests/Support/SmallStack.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using foundation::DecodingError;
using Case = ConditionalNode::Case;
using Type = ConversationDTO::MessageDTO::MessageTypeDTO;

/// A template of one node with these members beside the required ones.
std::string templateOf(std::string_view members) {
  return R"({"sequence":[{"type":"bot","key":"k","id":"i")" + std::string(members.empty() ? "" : ",") +
         std::string(members) + "}]}";
}

BotNode nodeOf(std::string_view members) {
  auto decoded = decodeBotTemplate(templateOf(members));
  EXPECT_TRUE(decoded) << decoded.error().path << ": " << decoded.error().description;
  if (!decoded || decoded->sequence.size() != 1) return {};
  return decoded->sequence.front();
}

TEST(BotTemplate, DecodesEveryMember) {
  const BotNode node = nodeOf(R"("text":"t","repeatText":"r","repeatable":true,"unknown":{"type":"no"},
      "options":{"values":[{"text":"A","key":true,"showCamera":false,"completed":true,"deselectOthers":false},
                           {"text":"B","key":12},{"text":"C","key":"c","completed":null},{"text":"D","key":5.0}],
                 "maxValue":9,"minValue":-1,"maxLength":3,"minLength":0,"cvEndpoint":"cv"},
      "sequence":[],
      "adventures":[{"value":"v","key":"a","adventure":{"sequence":[]}}],
      "branches":[{"logicalOperator":"OR","cases":[{"operator":"lessThan","value":5},{"operator":"equal","value":"true"},
                   {"operator":"contains","value":false}],"branch":{"sequence":[{"type":"year","key":"y","id":"z"}]}},
                  {"logicalOperator":"AND","cases":[],"branch":null}],
      "repeatableDetails":{"maxRepeats":3,"repeatText":"more?"})");
  EXPECT_EQ(node.type, Type::bot);
  EXPECT_EQ(node.text, "t");
  EXPECT_EQ(node.repeatText, "r");
  EXPECT_EQ(node.repeatable, true);
  ASSERT_TRUE(node.options && node.options->values);
  EXPECT_EQ(*node.options, (ConversationDTO::MessageDTO::OptionsDTO{
                               .values = {{{"A", "true", false, true, false},
                                           {"B", "12", {}, {}, {}},
                                           {"C", "c", {}, {}, {}},
                                           {"D", "5", {}, {}, {}}}},
                               .maxValue = 9,
                               .minValue = -1,
                               .maxLength = 3,
                               .minLength = 0,
                               .cvEndpoint = "cv",
                           }));
  EXPECT_TRUE(node.sequence && node.sequence->empty());
  ASSERT_TRUE(node.adventures && node.adventures->size() == 1);
  EXPECT_EQ(node.adventures->front().value, "v");
  EXPECT_EQ(node.adventures->front().key, "a");
  ASSERT_TRUE(node.branches && node.branches->size() == 2);
  const ConditionalNode& guard = node.branches->front();
  EXPECT_EQ(guard.logicalOperator, ConditionalNode::LogicalOperator::OR);
  EXPECT_EQ(guard.cases, (std::vector<Case>{{Case::Operator::lessThan, {Case::Value::Number{5}}},
                                            {Case::Operator::equal, {Case::Value::String{"true"}}},
                                            {Case::Operator::contains, {Case::Value::Bool{false}}}}));
  ASSERT_TRUE(guard.branch && guard.branch->sequence.size() == 1);
  EXPECT_EQ(guard.branch->sequence.front().id, "z");
  EXPECT_FALSE(node.branches->back().branch);
  EXPECT_EQ(node.repeatableDetails, (BotNode::RepeatableDetails{3, "more?"}));
}

TEST(BotTemplate, AbsentAndNullAreAlike) {
  const BotNode absent = nodeOf("");
  const BotNode null = nodeOf(R"("options":null,"text":null,"repeatText":null,"repeatable":null,"sequence":null,
      "adventures":null,"branches":null,"repeatableDetails":null)");
  EXPECT_EQ(absent, null);
  EXPECT_FALSE(null.repeatable || null.sequence || null.adventures || null.branches);
  EXPECT_TRUE(decodeBotTemplate(R"({"sequence":[]})")->sequence.empty());
}

TEST(BotTemplate, KnowsEveryNodeType) {
  const std::string_view kTypes[] = {"module",     "bot",
                                     "select_one", "select_single_module",
                                     "cyoa",       "select_multiple",
                                     "year",       "text",
                                     "number",     "photo",
                                     "video",      "panorama",
                                     "fnol",       "meshscan",
                                     "location",   "boolean"};
  std::size_t index = 0;
  for (const std::string_view type : kTypes) {
    const auto decoded =
        decodeBotTemplate(R"({"sequence":[{"type":")" + std::string(type) + R"(","key":"","id":""}]})");
    ASSERT_TRUE(decoded) << type;
    EXPECT_EQ(static_cast<std::size_t>(decoded->sequence.front().type), index++);
    EXPECT_EQ(wireString(decoded->sequence.front().type), type);
    EXPECT_EQ(messageTypeOfWireString(type), decoded->sequence.front().type);
  }
  EXPECT_FALSE(messageTypeOfWireString("selectOne"));
}

TEST(BotTemplate, TellsWhereAndWhyItDoesNotDecode) {
  using Kind = DecodingError::Kind;
  struct Row {
    std::string text;
    Kind kind;
    std::string_view path;
  };
  const std::string node = "sequence[0].";
  const Row rows[] = {
      {"[]", Kind::typeMismatch, ""},
      {"{}", Kind::keyNotFound, "sequence"},
      {R"({"sequence":null})", Kind::valueNotFound, "sequence"},
      {R"({"sequence":{}})", Kind::typeMismatch, "sequence"},
      {R"({"sequence":[1]})", Kind::typeMismatch, "sequence[0]"},
      {R"({"sequence":[{"type":"Bot","key":"","id":""}]})", Kind::dataCorrupted, "sequence[0].type"},
      {R"({"sequence":[{"key":"","id":""}]})", Kind::keyNotFound, "sequence[0].type"},
      {R"({"sequence":[{"type":"bot","key":"","id":7}]})", Kind::typeMismatch, "sequence[0].id"},
      {R"({"sequence":[{"type":"bot","key":"","id":""},{"type":"bot","key":null,"id":""}]})", Kind::valueNotFound,
       "sequence[1].key"},
      {templateOf(R"("repeatable":"true")"), Kind::typeMismatch, "sequence[0].repeatable"},
      {templateOf(R"("repeatableDetails":{})"), Kind::keyNotFound, "sequence[0].repeatableDetails.repeatText"},
      {templateOf(R"("repeatableDetails":{"repeatText":"","maxRepeats":1e400})"), Kind::dataCorrupted,
       "sequence[0].repeatableDetails.maxRepeats"},
      {templateOf(R"("options":{"maxValue":5.5})"), Kind::dataCorrupted, "sequence[0].options.maxValue"},
      {templateOf(R"("options":{"values":[{"text":"","key":""},{"text":"","key":1.5}]})"), Kind::typeMismatch,
       "sequence[0].options.values[1].key"},
      {templateOf(R"("options":{"values":[{"text":"","key":null}]})"), Kind::valueNotFound,
       "sequence[0].options.values[0].key"},
      {templateOf(R"("adventures":[{"value":"","adventure":{"sequence":[]}}])"), Kind::keyNotFound,
       "sequence[0].adventures[0].key"},
      {templateOf(R"("adventures":[{"value":"","key":"","adventure":{}}])"), Kind::keyNotFound,
       "sequence[0].adventures[0].adventure.sequence"},
      {templateOf(R"("adventures":[{"value":"","key":"","adventure":{"sequence":[{"type":"bot","key":"k"}]}}])"),
       Kind::keyNotFound, "sequence[0].adventures[0].adventure.sequence[0].id"},
      {templateOf(R"("branches":[{"logicalOperator":"XOR","cases":[]}])"), Kind::dataCorrupted,
       "sequence[0].branches[0].logicalOperator"},
      {templateOf(R"("branches":[{"logicalOperator":"OR","cases":[{"operator":"is","value":1}]}])"),
       Kind::dataCorrupted, "sequence[0].branches[0].cases[0].operator"},
      {templateOf(R"("branches":[{"logicalOperator":"OR","cases":[{"operator":"equal","value":[]}]}])"),
       Kind::typeMismatch, "sequence[0].branches[0].cases[0].value"},
      {"{\"sequence\":[", Kind::syntax, ""},
  };
  for (const Row& row : rows) {
    const auto decoded = decodeBotTemplate(row.text);
    ASSERT_FALSE(decoded) << row.text;
    EXPECT_EQ(decoded.error().kind, row.kind) << row.text;
    EXPECT_EQ(decoded.error().path, row.path) << row.text;
    EXPECT_FALSE(decoded.error().description.empty());
  }
  EXPECT_EQ(decodeBotTemplate(rows[20].text).error().description, "Value type not recognized");
}

TEST(BotTemplate, TellsEveryErrorInTheOrderOfTheDocument) {
  const auto document = foundation::JSONDocument::parse(R"({"sequence":[
      {"type":"bot","key":"a","id":"a","sequence":[{"type":"x","key":1,"id":"b"},
        {"type":"bot","key":"","id":"","branches":[{"logicalOperator":"OR","cases":[{"operator":"?","value":null}],
          "branch":{"sequence":[{}]}}]}]},
      {"type":"bot"}]})");
  ASSERT_TRUE(document);
  foundation::DecodingOptions options;
  options.collectAllErrors = true;
  const auto decoded = decodeBotTemplate(*document, options);
  ASSERT_FALSE(decoded);
  std::vector<std::string> paths;
  for (const DecodingError& error : decoded.error()) paths.push_back(error.path);
  EXPECT_EQ(paths, (std::vector<std::string>{
                       "sequence[0].sequence[0].type",
                       "sequence[0].sequence[0].key",
                       "sequence[0].sequence[1].branches[0].cases[0].operator",
                       "sequence[0].sequence[1].branches[0].cases[0].value",
                       "sequence[0].sequence[1].branches[0].branch.sequence[0].type",
                       "sequence[0].sequence[1].branches[0].branch.sequence[0].key",
                       "sequence[0].sequence[1].branches[0].branch.sequence[0].id",
                       "sequence[1].key",
                       "sequence[1].id",
                   }));
}

/// A list of `count` times `element`.
std::string listOf(std::size_t count, std::string_view element) {
  std::string text = "[";
  for (std::size_t index = 0; index < count; ++index) text += (index == 0 ? "" : ",") + std::string(element);
  return text + "]";
}

TEST(BotTemplate, KeepsWhatLongListsHold) {
  const std::size_t count = 3000;
  const std::string nodes = R"({"sequence":[{"type":"bot","key":"k","id":"leaf"}]})";
  const BotNode node = nodeOf(
      R"("adventures":)" + listOf(count, R"({"value":"v","key":"a","adventure":)" + nodes + "}") + R"(,"branches":)" +
      listOf(count, R"({"logicalOperator":"AND","cases":[],"branch":)" + nodes + "}") + R"(,"sequence":)" +
      listOf(count, R"({"type":"bot","key":"k","id":"i","sequence":[{"type":"bot","key":"k","id":"leaf"}]})"));
  ASSERT_TRUE(node.adventures && node.branches && node.sequence);
  ASSERT_EQ(node.adventures->size(), count);
  ASSERT_EQ(node.branches->size(), count);
  ASSERT_EQ(node.sequence->size(), count);
  for (std::size_t index = 0; index < count; ++index) {
    ASSERT_EQ((*node.adventures)[index].adventure.sequence.front().id, "leaf");
    ASSERT_EQ((*node.branches)[index].branch->sequence.front().id, "leaf");
    ASSERT_EQ((*node.sequence)[index].sequence->front().id, "leaf");
  }
}

/// A template whose node lists nest `levels` deep through `open` and `close`.
std::string nested(std::size_t levels, std::string_view open, std::string_view close) {
  std::string text = R"({"sequence":[)";
  for (std::size_t level = 1; level < levels; ++level) text += open;
  text += R"({"type":"bot","key":"leaf","id":"leaf"})";
  for (std::size_t level = 1; level < levels; ++level) text += close;
  return text + "]}";
}

TEST(BotTemplate, NestsToItsLimitOnASmallStackAndNoFurther) {
  struct Row {
    std::string_view label, open, close;
  };
  const Row rows[] = {
      {"sequences", R"({"type":"bot","key":"","id":"","sequence":[)", "]}"},
      {"menus", R"({"type":"cyoa","key":"","id":"","adventures":[{"value":"","key":"","adventure":{"sequence":[)",
       "]}}]}"},
      {"branches",
       R"({"type":"cyoa","key":"","id":"","branches":[{"logicalOperator":"OR","cases":[],"branch":{"sequence":[)",
       "]}}]}"},
  };
  for (const Row& row : rows) {
    const std::string atLimit = nested(BotTemplate::kMaximumNesting, row.open, row.close);
    tests::onSmallStack([&] { EXPECT_TRUE(decodeBotTemplate(atLimit)) << row.label; });

    const std::string beyond = nested(BotTemplate::kMaximumNesting + 1, row.open, row.close);
    tests::onSmallStack([&] {
      const auto decoded = decodeBotTemplate(beyond);
      ASSERT_FALSE(decoded) << row.label;
      EXPECT_EQ(decoded.error().kind, DecodingError::Kind::nestingTooDeep);
    });
    const std::string absurd = nested(200'000, row.open, row.close);
    tests::onSmallStack([&] { EXPECT_FALSE(decodeBotTemplate(absurd)) << row.label; });
  }
}

}  // namespace
}  // namespace kestrom::models

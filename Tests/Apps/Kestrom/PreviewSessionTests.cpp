#include "Apps/kestrom/PreviewSession.hpp"

#include "Apps/kestrom/Composition.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace kestrom::app {
namespace {

using Status = PreviewSession::Status;
using Kind = PreviewEvent::Kind;

/// What a session says: one line an event, with a sign for its kind.
std::string told(const std::vector<PreviewEvent>& events) {
  std::string text;
  for (const PreviewEvent& event : events) {
    switch (event.kind) {
      case Kind::bot:
        text += "bot: ";
        break;
      case Kind::user:
        text += "you: ";
        break;
      case Kind::refusal:
        text += "no: ";
        break;
      case Kind::stuck:
        text += "stuck: ";
        break;
      case Kind::doneOption:
        text += "done ";
        break;
      case Kind::option:
      case Kind::prompt:
      case Kind::notice:
      case Kind::finished:
        break;
    }
    text += event.text + '\n';
  }
  return text;
}

foundation::Date noon() {
  return foundation::Date::fromSecondsSince1970(1719835200);
}

/// Sessions on templates of one module, at noon on 1 July 2024, on a device with the files "/media/…".
class PreviewSessionTest : public testing::Test {
 protected:
  /// Opens a session on a module of these nodes, given as JSON, and gives what it says first.
  std::string open(const std::string& nodes, std::vector<models::BotAPIAnswerDTO> kept = {}) {
    return openModule(R"("sequence":[)" + nodes + "]", std::move(kept));
  }

  std::string openModule(const std::string& content, std::vector<models::BotAPIAnswerDTO> kept = {}) {
    auto decoded =
        models::decodeBotTemplate(R"({"sequence":[{"type":"module","key":"roof","id":"m1",)" + content + "}]}");
    EXPECT_TRUE(decoded) << decoded.error().path << decoded.error().description;
    _template = std::move(*decoded);
    const auto findMediaFile = [](const std::string& path) -> std::optional<std::string> {
      if (path.starts_with("none")) return {};
      return "/media/" + path;
    };
    _session = std::make_unique<PreviewSession>(
        _template, _engine, _conversion, std::move(kept),
        PreviewSession::Surroundings{noon, findMediaFile, foundation::URL::fromFilePath("/media")});
    return told(_session->start());
  }

  std::string say(std::string_view line) { return told(_session->take(line)); }

  /// Why a line is refused; the question must come again behind it, and nothing may have changed.
  std::string refusal(std::string_view line) {
    const std::size_t revision = _session->revision();
    auto events = _session->take(line);
    EXPECT_EQ(_session->revision(), revision);
    if (events.empty() || events.front().kind != Kind::refusal) return "not refused: " + told(events);
    const std::string reason = events.front().text;
    events.erase(events.begin());
    EXPECT_EQ(told(events), say(""));
    return reason;
  }

  /// The answer given last, as the device's answers file has it.
  std::string kept() const { return foundation::encodeJSON(_session->answers().back()); }

  /// The same without what all answers of these sessions share.
  std::string keptValue() const {
    const std::string text = kept();
    return text.substr(0, text.find(R"(,"iterationId")"));
  }

  PreviewSession& session() { return *_session; }

 private:
  models::BotTemplate _template;
  services::NativeBotEngine _engine{noon};
  services::ConversationConversion _conversion = makeConversion(
      std::make_shared<const foundation::JSONDocument>(*foundation::JSONDocument::parse(R"({"name":"Ada"})")), noon);
  std::unique_ptr<PreviewSession> _session;
};

constexpr const char* kHello = R"({"type":"bot","key":"hello","id":"n0","text":"Hello {{case.name}}"})";
constexpr const char* kMaterial =
    R"({"type":"select_one","key":"material","id":"n1","text":"Material?","options":{"values":[
    {"text":"Tile","key":"tile"},{"text":"Metal","key":"metal"}],"cvEndpoint":"cv"}})";
constexpr const char* kName = R"({"type":"text","key":"name","id":"n2","text":"Name?","options":{"minLength":2}})";

std::string join(std::initializer_list<std::string> nodes) {
  std::string text;
  for (const std::string& node : nodes) text += (text.empty() ? "" : ",") + node;
  return text;
}

TEST_F(PreviewSessionTest, GoesFromStatementToChoiceToTextToTheEnd) {
  EXPECT_EQ(open(join({kHello, kMaterial, kName})),
            "bot: Hello Ada\nbot: Material?\n1) Tile\n2) Metal\n(one choice)\n");
  EXPECT_EQ(say("2"), "you: Metal\nbot: Name?\n(text, at least 2 characters)\n");
  EXPECT_EQ(kept(), R"({"value":"Metal","keyValue":{"key":"metal","value":"Metal"},"iterationId":0,"messageId":"n1",)"
                    R"("moduleId":"m1","type":"select_one","locationType":"none","context":"cv",)"
                    R"("answeredAt":741528000,"wasSynced":false})");
  EXPECT_EQ(say("Grace"), "you: Grace\nfinished: 1 of 1 modules, 3 answers\n");
  EXPECT_EQ(session().status(), Status::finished);
  // The statement's own answer has neither key nor text.
  EXPECT_EQ(foundation::encodeJSON(session().answers().front()).find(R"({"value":"","keyValue":{"key":"","value":""})"),
            0);
}

TEST_F(PreviewSessionTest, RefusalsChangeNothingAndSayWhy) {
  open(join({kMaterial, kName}));
  EXPECT_EQ(refusal("3"), "no option has this number or key: 3");
  EXPECT_EQ(refusal("tile roof.jpeg"), "nothing may follow option 1");
  EXPECT_EQ(refusal("/back"), "no such command; there are /edit, /state and /quit");
  EXPECT_EQ(refusal("/edit"), "there is no answer that can be edited now");
  EXPECT_EQ(refusal("\xFF"), "the line is no UTF-8 text");
  EXPECT_EQ(say(" \t"), "1) Tile\n2) Metal\n(one choice)\n");
  EXPECT_EQ(session().answers().size(), 0U);
  say("tile");
  EXPECT_EQ(refusal("x"), "Please enter text of at least 2 characters");
  EXPECT_EQ(session().answers().size(), 1U);
  EXPECT_EQ(session().revision(), 1U);
  EXPECT_EQ(session().status(), Status::asking);
}

TEST_F(PreviewSessionTest, MultipleChoicesKeepTheOrderOfChoosing) {
  const std::string node = R"({"type":"select_multiple","key":"k","id":"n1","text":"Which?","options":{"values":[
    {"text":"A","key":"a"},{"text":"B","key":"b"},{"text":"C","key":"c"},{"text":"None","key":"n","deselectOthers":true}]}})";
  struct Row {
    std::string_view line, said, value;
  };
  const Row rows[] = {
      {"1", "you: A", R"(["A"])"},
      {"3, a ,2", "you: C, A, and B", R"(["C","A","B"])"},
      {"1,2,4", "you: None", R"(["None"])"},
      {"4,1,2", "you: A and B", R"(["A","B"])"},
      {"1,1", "option 1 is chosen twice", ""},
      {"1,,2", "no option has this number or key: ", ""},
      {"1 2", "no option has this number or key: 1 2", ""},
  };
  for (const Row& row : rows) {
    open(node);
    if (row.value.empty()) {
      EXPECT_EQ(refusal(row.line), row.said);
      continue;
    }
    const std::string said = say(row.line);
    EXPECT_EQ(said.substr(0, said.find('\n')), row.said);
    ASSERT_EQ(session().answers().size(), 1U) << row.line;
    EXPECT_TRUE(kept().starts_with(R"({"value":)" + std::string(row.value) + ",")) << kept();
  }
}

TEST_F(PreviewSessionTest, CapturesAreAnsweredByFiles) {
  struct Row {
    std::string_view type, line, refusal, value;
  };
  const Row rows[] = {
      {"photo", "1 a b.jpeg", "",
       R"({"value":"file:///media/a%20b.jpeg","keyValue":{"key":"k","value":"file:///media/a%20b.jpeg"})"},
      {"photo", "1", "write: 1 FILE", ""},
      {"photo", "1 none.jpeg", "there is no file none.jpeg", ""},
      {"photo", "2", "", R"({"value":"Skip","keyValue":{"key":"skip","value":"Skip"})"},
      {"photo", "2 a.jpeg", "nothing may follow option 2", ""},
      {"video", "take a.mp4", "",
       R"({"value":"file:///media/a.mp4","keyValue":{"key":"k","value":"file:///media/a.mp4"})"},
      {"fnol", "1 a.mp4", "",
       R"({"value":{"mediaUrl":"file:///media/a.mp4"},"keyValue":{"mediaUrl":"file:///media/a.mp4"})"},
      {"panorama", "1 a.tar  b.JPG", "",
       R"({"value":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.JPG"},)"
       R"("keyValue":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.JPG"})"},
      {"panorama", "1 b.png a.tar", "",
       R"({"value":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.png"},)"
       R"("keyValue":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.png"})"},
      {"panorama", "1 a.tar b.gif", "the path of an image is missing", ""},
      {"panorama", "1 b.png", "the path of a .tar file is missing", ""},
      {"meshscan", "1 a.tar b.gif", "",
       R"({"value":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.gif"},)"
       R"("keyValue":{"mediaUrl":"file:///media/a.tar","thumbnailUrl":"file:///media/b.gif"})"},
      {"meshscan", "1 a.tar none.gif", "there is no file none.gif", ""},
  };
  for (const Row& row : rows) {
    open(R"({"type":")" + std::string(row.type) + R"(","key":"k","id":"n1","text":"Show it","options":{"values":[
      {"text":"Go","key":"take"},{"text":"Skip","key":"skip","showCamera":false}]}})");
    if (!row.refusal.empty()) {
      EXPECT_EQ(refusal(row.line), row.refusal);
      continue;
    }
    const std::string said = say(row.line);
    ASSERT_EQ(session().answers().size(), 1U) << row.type << ' ' << row.line << ": " << said;
    EXPECT_EQ(keptValue(), row.value) << row.type << ' ' << row.line;
    EXPECT_EQ(session().status(), Status::finished);
  }
}

TEST_F(PreviewSessionTest, AnAddressWithoutCoordinatesIsNoPlace) {
  EXPECT_EQ(open(R"({"type":"location","key":"k","id":"n1","text":"Where?","options":{"values":[
    {"text":"Enter it","key":"enter"}]}})"),
            "bot: Where?\n1) Enter it  [1 ADDRESS]\n(one choice)\n");
  EXPECT_EQ(refusal("1"), "write: 1 ADDRESS");
  EXPECT_EQ(say("1 12 Elm St, Troy"), "you: 12 Elm St, Troy\nfinished: 1 of 1 modules, 1 answers\n");
  EXPECT_EQ(keptValue(), R"({"value":{"address":"Address not provided","locationType":"none"},)"
                         R"("keyValue":{"address":"Address not provided","locationType":"none"})");
}

TEST_F(PreviewSessionTest, AnEditReplacesTheAnswerInItsPlace) {
  const std::string last = R"({"type":"number","key":"age","id":"n3","text":"Age?"})";
  open(join({kMaterial, kName, last}));
  say("tile");
  EXPECT_EQ(say("/edit"), "bot: Material?\n1) Tile\n2) Metal\n(one choice)\n");
  EXPECT_EQ(say("/edit"), "bot: Material?\n1) Tile\n2) Metal\n(one choice)\n");
  EXPECT_EQ(refusal("9"), "no option has this number or key: 9");
  EXPECT_EQ(say("/state"),
            "progress: 0 of 1 modules, 1 answers\npending: \"n1\", key \"material\", type select_one, being edited\n"
            "module: \"m1\", key \"roof\"\niteration: none\n");
  EXPECT_EQ(say("metal"), "you: Metal\nbot: Name?\n(text, at least 2 characters)\n");
  EXPECT_EQ(session().answers().size(), 1U);
  EXPECT_EQ(keptValue(), R"({"value":"Metal","keyValue":{"key":"metal","value":"Metal"})");
  // The next answer is a new one again.
  say("Ada");
  EXPECT_EQ(session().answers().size(), 2U);
  EXPECT_EQ(say("/edit"), "bot: Name?\n(text, at least 2 characters)\n");
  say("Grace");
  EXPECT_EQ(say("40"), "you: 40\nfinished: 1 of 1 modules, 3 answers\n");
}

TEST_F(PreviewSessionTest, ResumesWhereItWasLeft) {
  const std::string nodes = join({kHello, kMaterial, kName});
  open(nodes);
  say("metal");
  auto kept = foundation::decodeJSON<std::vector<models::BotAPIAnswerDTO>>(foundation::encodeJSON(session().answers()),
                                                                           foundation::DecodingOptions{});
  ASSERT_TRUE(kept);
  EXPECT_EQ(open(nodes, std::move(*kept)),
            "bot: Hello Ada\nbot: Material?\nyou: Metal\nbot: Name?\n(text, at least 2 characters)\n");
  EXPECT_EQ(session().revision(), 0U);
  EXPECT_EQ(say("/edit"), "bot: Material?\n1) Tile\n2) Metal\n(one choice)\n");
  say("tile");
  EXPECT_EQ(session().answers().size(), 2U);
  EXPECT_EQ(say("/quit"), "");
  EXPECT_EQ(session().status(), Status::quit);
}

TEST_F(PreviewSessionTest, MenusMarkWhatIsDone) {
  const auto arm = [](const std::string& key, const std::string& node) {
    return R"({"value":")" + key + R"(","key":")" + key + R"(","adventure":{"sequence":[)" + node + "]}}";
  };
  open(R"({"type":"cyoa","key":"menu","id":"n1","text":"Where to?","repeatText":"And now?","options":{"values":[
    {"text":"Attic","key":"attic"},{"text":"Cellar","key":"cellar"}]},"adventures":[)" +
       join({arm("attic", kName), arm("cellar", "")}) + "]}");
  say("attic");
  EXPECT_EQ(say("Ada"), "you: Ada\nbot: And now?\ndone 1) Attic\n2) Cellar\n(one choice)\n");
  // The menu comes again while its other arm is open, under the next iteration.
  EXPECT_NE(say("/state").find("type select_single_module\nmodule: \"m1\", key \"roof\"\niteration: 1\n"),
            std::string::npos);
  EXPECT_EQ(say("2"), "you: Cellar\nfinished: 1 of 1 modules, 3 answers\n");
}

TEST_F(PreviewSessionTest, RepeatsAskTheirGateAgain) {
  const std::string gate = R"({"type":"boolean","key":"more","id":"n1","text":"Any damage?","options":{"values":[
    {"text":"Yes","key":true},{"text":"No","key":false}]}})";
  openModule(R"("repeatable":true,"repeatableDetails":{"repeatText":"More damage?"},"sequence":[)" +
             join({gate, kName}) + "]");
  say("true");
  EXPECT_EQ(say("Hail"), "you: Hail\nbot: More damage?\n1) Yes\n2) No\n(one choice)\n");
  say("1");
  EXPECT_NE(say("/state").find("\niteration: 1\n"), std::string::npos);
  say("Wind");
  EXPECT_EQ(say("false"), "you: No\nfinished: 1 of 1 modules, 5 answers\n");
}

TEST_F(PreviewSessionTest, SaysWhyAConversationCannotGoOn) {
  struct Row {
    std::string_view label, node, reason;
  };
  const Row rows[] = {
      {"a module that holds nothing", R"({"type":"module","key":"k","id":"n"})",
       "the conversation cannot go on: the question \"n\", key \"k\", type module offers nothing to answer with"},
      {"a choice without options", R"({"type":"select_one","key":"k","id":"n"})",
       "the conversation cannot go on: the question \"n\", key \"k\", type select_one offers nothing to answer with"},
      {"a choice without values", R"({"type":"select_multiple","key":"k","id":"n","options":{}})",
       "the conversation cannot go on: the question \"n\", key \"k\", type select_multiple offers nothing to answer "
       "with"},
      {"an empty range", R"({"type":"number","key":"k","id":"n","options":{"minValue":3,"maxValue":1}})",
       "the conversation cannot go on: the question \"n\", key \"k\", type number takes no input: its range is empty, "
       "3 to 1"},
      {"a year of the future", R"({"type":"year","key":"k","id":"n","options":{"minValue":2025}})",
       "the conversation cannot go on: the question \"n\", key \"k\", type year takes no input: its range is empty, "
       "2025 to 2024"},
  };
  for (const Row& row : rows) {
    EXPECT_NE(open(std::string(row.node)).find("stuck: " + std::string(row.reason) + '\n'), std::string::npos)
        << row.label;
    EXPECT_EQ(session().status(), Status::stuck) << row.label;
  }

  open(R"({"type":"cyoa","key":"k","id":"n","options":{"values":[{"text":"A","key":"a"}]},"adventures":[
    {"value":"B","key":"b","adventure":{"sequence":[]}}]})");
  EXPECT_EQ(
      say("a"),
      "stuck: the conversation is not finished, but asks nothing: an answer to a menu matches none of its arms\n");
}

TEST_F(PreviewSessionTest, AnEditableQuestionOfAnotherTemplateIsNotAsked) {
  open(join({kMaterial, kName}));
  say("tile");
  auto kept = session().answers();
  open(join({R"({"type":"module","key":"material","id":"n1"})", kName}), std::move(kept));
  EXPECT_EQ(refusal("/edit"), "there is no answer that can be edited now");
  EXPECT_EQ(say("Ada"), "you: Ada\nfinished: 1 of 1 modules, 2 answers\n");
}

}  // namespace
}  // namespace kestrom::app

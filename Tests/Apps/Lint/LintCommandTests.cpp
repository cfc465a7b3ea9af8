#include "Apps/kestrom/Lint/LintCommand.hpp"

#include "Apps/kestrom/Lint/LintRules.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Tests/Apps/Lint/LintTesting.hpp"
#include "Tests/Support/SmallStack.hpp"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace kestrom::app {

namespace {

using namespace kestrom::test;

const std::string kRoot = KESTROM_SOURCE_DIR;

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

Outcome run(const LintArguments& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = runLint(arguments, out, err);
  return {status, out.str(), err.str()};
}

/// A file with a content, gone with the test.
class ScratchFile {
 public:
  ScratchFile(const std::string& name, const std::string& content)
      : _path(std::filesystem::path(testing::TempDir()) / name) {
    std::ofstream(_path, std::ios::binary) << content;
  }
  ~ScratchFile() { std::filesystem::remove(_path); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  std::string path() const { return _path.string(); }

 private:
  std::filesystem::path _path;
};

TEST(LintCommand, FindsNothingInTheGoodExample) {
  const Outcome good =
      run({{kRoot + "/examples/home-inspection.json"}, kRoot + "/examples/home-inspection.case.json", false});
  EXPECT_EQ(good.status, 0);
  EXPECT_EQ(good.out, "");
  EXPECT_EQ(good.err, "");
}

TEST(LintCommand, FindsEachDocumentedRuleOnceInTheShowcase) {
  std::multiset<std::string> documented;
  std::ifstream page(kRoot + "/docs/template-rules.md");
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("### ")) documented.insert(line.substr(4));
  }
  std::multiset<std::string> known;
  for (const rules::Rule& rule : rules::kAll) known.emplace(rule.name);
  EXPECT_EQ(documented, known);

  const Outcome showcase =
      run({{kRoot + "/examples/lint-showcase.json"}, kRoot + "/examples/lint-showcase.case.json", true});
  EXPECT_EQ(showcase.status, 1);
  EXPECT_EQ(showcase.err, "");
  std::multiset<std::string> found;
  std::istringstream lines(showcase.out);
  for (std::string line; std::getline(lines, line);) {
    const auto finding = foundation::JSONDocument::parse(line);
    ASSERT_TRUE(finding) << line;
    found.emplace(finding->root().member("rule")->string());
  }
  EXPECT_EQ(found, documented);
}

TEST(LintCommand, PrintsOneFindingALine) {
  const ScratchFile file("lint\ntab.json",
                         json("{'sequence':[" + node("a\\u001b[2J", "bot") + "],'x\\ny':0,'x\\ny':1}"));
  std::string shown = file.path();
  shown.replace(shown.find('\n'), 1, "\\n");

  const Outcome plain = run({{file.path()}, std::nullopt, false});
  EXPECT_EQ(plain.status, 0);
  EXPECT_EQ(plain.out,
            shown +
                ":sequence[0]: warning: a node without a list at the top level is passed over: it is never "
                "shown, and counts as a finished module [top-level-leaf]\n" +
                shown +
                ":x\\ny: warning: the key \"x\\ny\" stands 2 times in this object; the device reads the last "
                "one alone, as if the others were not written [duplicate-key]\n");

  const Outcome object = run({{file.path()}, std::nullopt, true});
  const auto first = foundation::JSONDocument::parse(object.out.substr(0, object.out.find('\n')));
  ASSERT_TRUE(first);
  std::string keys;
  for (auto member = first->root().begin(); member != first->root().end(); ++member, ++member) {
    keys += std::string((*member).string()) + ' ';
  }
  EXPECT_EQ(keys, "file path severity rule text ");
  EXPECT_EQ(first->root().member("file")->string(), file.path());
}

TEST(LintCommand, GoesOnBehindWhatCannotBeRead) {
  const ScratchFile broken("lint-broken.json", "{'sequence': 5}");
  const Outcome several = run({{testing::TempDir(), "/no/such/file", broken.path()}, std::nullopt, false});
  EXPECT_EQ(several.status, 1);
  EXPECT_EQ(std::ranges::count(several.err, '\n'), 2);
  EXPECT_TRUE(several.err.contains("/no/such/file: "));
  EXPECT_TRUE(several.out.starts_with(broken.path() + ":: error: the text is no JSON"));

  const ScratchFile sound("lint-sound.json", R"({"sequence":[]})");
  EXPECT_EQ(run({{sound.path()}, broken.path(), false}).status, 1);
  const ScratchFile list("lint-list.json", "[]");
  const Outcome noObject = run({{sound.path()}, list.path(), false});
  EXPECT_EQ(noObject.status, 1);
  EXPECT_EQ(noObject.err, list.path() + ": a case is an object\n");
}

TEST(LintCommand, StandsHostileDocumentsOnASmallStack) {
  const auto repeated = [](std::string_view text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index) result += text;
    return result;
  };
  const struct {
    std::string label;
    std::string document;
  } rows[] = {
      {"empty", ""},
      {"no object", "[]"},
      {"a number", "1e999"},
      {"a NUL", std::string("{\"sequence\":[\0]}", 16)},
      {"no UTF-8", "{\"sequence\":[],\"\xff\xfe\":1}"},
      {"a million lists", repeated("[", 1'000'000)},
      {"a million nodes in each other", repeated(R"({"sequence":[)", 1'000'000)},
      {"closed, beyond the parser's depth", repeated("[", 9'000) + repeated("]", 9'000)},
      {"within the parser's depth",
       repeated(R"({"type":"bot","id":"i","key":"k","sequence":[)", 4'000) + repeated("]}", 4'000)},
      {"ends in the middle", R"({"sequence":[{"type":)"},
      {"keys of one name", "{" + repeated(R"("a":1,)", 200'000) + R"("sequence":[1]})"},
  };
  for (const auto& row : rows) {
    kestrom::tests::onSmallStack([&] {
      const LintResult result = lintTemplate(row.document, {});
      EXPECT_FALSE(result.findings.empty()) << row.label;
      EXPECT_TRUE(std::ranges::any_of(result.findings, [](const Finding& each) {
        return each.severity == Severity::error;
      })) << row.label;
    });
  }
}

TEST(LintCommand, TellsAboutAsMuchAsAnybodyReads) {
  const auto many = [](const std::string& element) {
    std::string list = element;
    for (int count = 1; count < 30'000; ++count) list += ',' + element;
    return lintTemplate(json("{'sequence':[" + list + "]}"), {});
  };
  for (const LintResult& result : {many("0"), many(node("a", "bot"))}) {
    EXPECT_EQ(result.findings.size(), 10'000U);
    EXPECT_TRUE(result.isCut);
  }
}

}  // namespace

}  // namespace kestrom::app

#pragma once

#include "Apps/kestrom/Lint/TemplateLinter.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

/// Short words for templates and findings in tests. JSON is written with single quotes.
namespace kestrom::test {

using app::Finding;
using app::LintOptions;
using app::LintResult;

inline constexpr std::int64_t kPresentYear = 2026;

inline std::string json(std::string text) {
  std::ranges::replace(text, '\'', '"');
  return text;
}

/// A node with all required fields and a text; `more` are further members, led by a comma.
inline std::string node(const std::string& id, const std::string& type, const std::string& more = "") {
  return "{'type':'" + type + "','id':'" + id + "','key':'" + id + ".key','text':'Well?'" + more + "}";
}

/// `,'options':{'values':[…]}` with an option for each key, written as JSON: `'a'`, `true`, `1`.
inline std::string options(const std::vector<std::string>& keys) {
  std::string values;
  for (const std::string& key : keys) values += (values.empty() ? "" : ",") + ("{'text':'Pick','key':" + key + "}");
  return ",'options':{'values':[" + values + "]}";
}

inline std::string yesNo(const std::string& id) {
  return node(id, "boolean", options({"true", "false"}));
}

/// An arm of a menu.
inline std::string arm(const std::string& key, const std::string& nodes) {
  return "{'value':'Go','key':'" + key + "','adventure':{'sequence':[" + nodes + "]}}";
}

/// A guard: "AND" or "OR" over cases like `{'operator':'equal','value':'a'}`, with a branch.
inline std::string guard(const std::string& logicalOperator, const std::string& cases, const std::string& nodes = "") {
  return "{'logicalOperator':'" + logicalOperator + "','cases':[" + cases + "],'branch':{'sequence':[" + nodes + "]}}";
}

inline std::string when(const std::string& operation, const std::string& value) {
  return "{'operator':'" + operation + "','value':" + value + "}";
}

/// Findings as "path: severity [rule]".
inline std::vector<std::string> lines(const LintResult& result) {
  std::vector<std::string> lines;
  for (const Finding& finding : result.findings) {
    lines.push_back(finding.path + ": " + std::string(nameOf(finding.severity)) + " [" + std::string(finding.rule) +
                    "]");
  }
  return lines;
}

inline std::vector<std::string> lint(const std::string& document) {
  LintOptions options;
  options.presentYear = kPresentYear;
  return lines(lintTemplate(json(document), options));
}

/// Findings in the list of a module that holds `nodes`, with paths from that list on: "[0].options: …".
inline std::vector<std::string> lintList(const std::string& nodes) {
  constexpr std::string_view kList = "sequence[0].sequence";
  auto found = lint("{'sequence':[{'type':'module','id':'top','key':'top','sequence':[" + nodes + "]}]}");
  for (std::string& line : found) {
    if (line.starts_with(kList)) line.erase(0, kList.size());
  }
  return found;
}

/// What a list of nodes is found to have.
struct Row {
  std::string label;
  std::string nodes;
  std::vector<std::string> want;
};

inline void expectFindings(const std::vector<Row>& rows) {
  for (const Row& row : rows) EXPECT_EQ(lintList(row.nodes), row.want) << row.label;
}

}  // namespace kestrom::test

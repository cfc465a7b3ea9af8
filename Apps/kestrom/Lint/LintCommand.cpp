#include "Apps/kestrom/Lint/LintCommand.hpp"

#include "Apps/kestrom/InputDocuments.hpp"
#include "Apps/kestrom/Lint/TemplateLinter.hpp"
#include "Apps/kestrom/LocalFiles.hpp"
#include "Apps/kestrom/PrintableText.hpp"
#include "Platform/Foundation/Calendar.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <chrono>
#include <iostream>
#include <memory>
#include <string_view>
#include <utility>

namespace kestrom::app {

using foundation::JSONDocument;
using foundation::JSONWriter;

namespace {

std::int64_t presentYear() {
  const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
  return foundation::calendarYear(foundation::Date::fromSecondsSince1970(since1970.count()));
}

void printLine(const std::string& file, const Finding& finding, std::ostream& out) {
  std::string line = file + ':' + finding.path + ": ";
  line += nameOf(finding.severity);
  line += ": " + finding.text + " [";
  line += finding.rule;
  out << printableText(line, LineBreaks::escape) << "]\n";
}

void printObject(const std::string& file, const Finding& finding, std::ostream& out) {
  JSONWriter writer;
  writer.beginObject();
  const std::pair<std::string_view, std::string_view> members[] = {{"file", file},
                                                                   {"path", finding.path},
                                                                   {"severity", nameOf(finding.severity)},
                                                                   {"rule", finding.rule},
                                                                   {"text", finding.text}};
  for (const auto& [key, value] : members) {
    writer.key(key);
    writer.string(value);
  }
  writer.endObject();
  out << writer.text() << '\n';
}

}  // namespace

int runLint(const LintArguments& arguments, std::ostream& out, std::ostream& err) {
  const auto complain = [&err](const std::string& file, std::string_view reason) {
    err << printableText(file + ": " + std::string(reason), LineBreaks::escape) << '\n';
  };
  LintOptions options;
  options.presentYear = presentYear();
  std::shared_ptr<const JSONDocument> caseDocument;
  if (arguments.caseFile) {
    auto document = loadCase(*arguments.caseFile, std::cin);
    if (!document) {
      err << document.error() << '\n';
      return 1;
    }
    caseDocument = std::move(*document);
    options.caseObject = caseDocument->root();
  }

  bool hasFailed = false;
  for (const std::string& name : arguments.templates) {
    const auto text = readFile(name, JSONDocument::kMaximumSize);
    if (!text) {
      complain(name, text.error());
      hasFailed = true;
      continue;
    }
    const LintResult result = lintTemplate(*text, options);
    for (const Finding& finding : result.findings) {
      arguments.json ? printObject(name, finding, out) : printLine(name, finding, out);
      hasFailed = hasFailed || finding.severity == Severity::error;
    }
    if (result.isCut) {
      complain(name, "there are more findings than are told");
      hasFailed = true;
    }
  }
  return hasFailed ? 1 : 0;
}

}  // namespace kestrom::app

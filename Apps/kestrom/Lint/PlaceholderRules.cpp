#include "Apps/kestrom/Lint/PlaceholderRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"
#include "Core/Services/Bot/PlaceholderFinder.hpp"

#include <cstddef>
#include <string>

namespace kestrom::app {

using foundation::JSONValue;

namespace {

constexpr std::string_view kOpen = "{{";

}  // namespace

void PlaceholderRules::checkPath(std::string_view path, const Place& place, LintReport& report) const {
  std::string_view rest = path;
  services::takePathPiece(rest);
  auto piece = services::takePathPiece(rest);
  if (!piece) {
    report.add(rules::kWholeCasePlaceholder, place,
               "the first piece of a placeholder names the case itself, and " + quoted(path) +
                   " has nothing behind it: the whole case is printed here");
    return;
  }
  if (!_case) return;
  std::optional<JSONValue> value = _case;
  for (; piece && value; piece = services::takePathPiece(rest)) value = value->member(*piece);
  if (value) return;
  report.add(rules::kUnresolvedPlaceholder, place,
             "the case has nothing at " + quoted(path) + ": the placeholder stays in the text, braces and all");
}

void PlaceholderRules::checkText(std::string_view text, const Place& place, LintReport& report) const {
  services::PlaceholderFinder finder(text);
  std::size_t at = 0;
  while (true) {
    const auto placeholder = finder.next();
    const std::string_view between = text.substr(at, placeholder ? placeholder->start - at : std::string_view::npos);
    if (between.contains(kOpen)) {
      report.add(rules::kUnfilledPlaceholder, place,
                 "a placeholder is opened by two braces and not closed by two on the same line: it is shown as it "
                 "stands, and never filled");
    }
    if (!placeholder) return;
    checkPath(placeholder->path, place, report);
    at = placeholder->end;
  }
}

void PlaceholderRules::check(const TemplateVisit& visit, LintReport& report) const {
  const auto& node = visit.node;
  if (isRepeating(node) && node.repeatableDetails) {
    checkText(node.repeatableDetails->repeatText, visit.place.member("repeatableDetails").member("repeatText"), report);
  }
  if (visit.kind == NodeKind::sequence) return;
  if (node.text) checkText(*node.text, visit.place.member("text"), report);
  if (node.repeatText && visit.kind == NodeKind::menu) {
    checkText(*node.repeatText, visit.place.member("repeatText"), report);
  }
  const auto& options = optionsOf(node);
  const Place values = visit.place.member("options").member("values");
  for (std::size_t index = 0; index < options.size(); ++index) {
    if (!options[index].text.contains(kOpen)) continue;
    report.add(rules::kUnfilledPlaceholder, values.element(index).member("text"),
               "the texts of options are shown as they stand: a placeholder in them is never filled");
  }
}

}  // namespace kestrom::app

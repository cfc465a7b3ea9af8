#include "Apps/kestrom/Lint/PlaceholderRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"
#include "Platform/Foundation/Text.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace kestrom::app {

using foundation::JSONValue;

namespace {

constexpr std::string_view kOpen = "{{";
constexpr std::string_view kClose = "}}";

/// Offset of the first line break from `from` on, or the end: a placeholder does not go beyond it.
std::size_t lineEnd(std::string_view text, std::size_t from) {
  constexpr std::array<std::string_view, 7> kBreaks{"\n", "\v", "\f", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};
  std::size_t end = text.size();
  for (const std::string_view lineBreak : kBreaks) end = std::min(end, text.find(lineBreak, from));
  return end;
}

/// The pieces of a path behind the first one, which names the case itself; absent when there is none behind it.
std::optional<std::vector<std::string_view>> piecesBelowCase(std::string_view path) {
  std::vector<std::string_view> pieces;
  while (!path.empty()) {
    const std::size_t length = std::min(path.find('.'), path.size());
    if (length > 0) pieces.push_back(path.substr(0, length));
    path.remove_prefix(std::min(length + 1, path.size()));
  }
  if (pieces.size() < 2) return std::nullopt;
  pieces.erase(pieces.begin());
  return pieces;
}

}  // namespace

void PlaceholderRules::checkPath(std::string_view path, const Place& place, LintReport& report) const {
  const auto pieces = piecesBelowCase(path);
  if (!pieces) {
    report.add(rules::kWholeCasePlaceholder, place,
               "the first piece of a placeholder names the case itself, and " + quoted(path) +
                   " has nothing behind it: the whole case is printed here");
    return;
  }
  std::optional<JSONValue> value = _case;
  for (const std::string_view piece : *pieces) {
    if (value) value = value->member(piece);
  }
  if (!_case || value) return;
  report.add(rules::kUnresolvedPlaceholder, place,
             "the case has nothing at " + quoted(path) + ": the placeholder stays in the text, braces and all");
}

void PlaceholderRules::checkText(std::string_view text, const Place& place, LintReport& report) const {
  for (std::size_t open = text.find(kOpen); open != std::string_view::npos;) {
    std::size_t begin = open + kOpen.size();
    if (text.substr(begin).starts_with('{')) ++begin;
    const std::size_t end = lineEnd(text, open);
    const std::size_t close = text.find(kClose, begin);
    if (close >= end) {
      report.add(rules::kUnfilledPlaceholder, place,
                 "a placeholder is opened by two braces and not closed by two on the same line: it is shown as it "
                 "stands, and never filled");
      open = text.find(kOpen, end);
      continue;
    }
    checkPath(foundation::trimmedBlanks(text.substr(begin, close - begin)), place, report);
    open = text.find(kOpen, close + kClose.size());
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

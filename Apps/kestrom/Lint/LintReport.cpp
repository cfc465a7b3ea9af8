#include "Apps/kestrom/Lint/LintReport.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::app {

std::string_view nameOf(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

void LintReport::add(const rules::Rule& rule, Severity severity, const Place& place, std::string text) {
  if (_entries.size() == kMaximumFindings) {
    _isCut = true;
    return;
  }
  _entries.push_back({place.value().position(), _entries.size(), {place.path(), severity, rule.name, std::move(text)}});
}

std::vector<Finding> LintReport::inDocumentOrder() && {
  std::ranges::sort(_entries, {}, [](const Entry& entry) { return std::pair(entry.position, entry.order); });
  std::vector<Finding> findings;
  findings.reserve(_entries.size());
  for (Entry& entry : _entries) findings.push_back(std::move(entry.finding));
  return findings;
}

std::string quoted(std::string_view text) {
  constexpr std::size_t kMaximumLength = 60;
  bool isCut = false;
  if (text.size() > kMaximumLength) {
    std::size_t length = kMaximumLength;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    text = text.substr(0, length);
    isCut = true;
  }
  foundation::JSONWriter writer;
  writer.string(text);
  std::string result = std::move(writer).text();
  if (isCut) result.insert(result.size() - 1, "…");
  return result;
}

}  // namespace kestrom::app

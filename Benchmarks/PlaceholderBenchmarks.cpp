// Filling the placeholders of a text beside RE2 with the same expression, which finds the matches for the same
// resolving and replacing. From the prose of bot texts to texts of braces, where nothing may take more than one pass.

#include "Core/Services/Bot/HandleBarParser.hpp"
#include "Platform/Foundation/Text.hpp"

#include <benchmark/benchmark.h>
#include <re2/re2.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::benchmarks {
namespace {

using foundation::JSONDocument;
using foundation::JSONValue;

constexpr std::string_view kCase =
    R"({"id":"5f1a","policy":{"number":"AB-1200","holder":"Ann Smith"},"address":{"street":"Main Street 12",)"
    R"("city":"Springfield","state":"IL","zip":"62701"}})";

const std::shared_ptr<const JSONDocument>& caseDocument() {
  static const auto document = std::make_shared<const JSONDocument>(std::move(*JSONDocument::parse(kCase)));
  return document;
}

std::string parseWithKestrom(std::string_view text) {
  static const services::HandleBarParser parser(caseDocument());
  return parser.parse(text);
}

/// The text at a path; all values that the texts of these benchmarks name are texts.
std::optional<std::string_view> resolved(std::string_view path) {
  JSONValue value = caseDocument()->root();
  for (std::size_t dot = path.find('.'); dot != std::string_view::npos;) {
    path.remove_prefix(dot + 1);
    dot = path.find('.');
    const auto member = value.member(path.substr(0, dot));
    if (!member) return std::nullopt;
    value = *member;
  }
  if (!value.isString()) return std::nullopt;
  return value.string();
}

std::string parseWithRE2(std::string_view text) {
  static const RE2 expression(R"(\{\{\{?(.*?)\}\}\}?)");
  std::string result;
  std::size_t copied = 0;
  re2::StringPiece match[2];
  const re2::StringPiece whole(text.data(), text.size());
  while (expression.Match(whole, copied, text.size(), RE2::UNANCHORED, match, 2)) {
    const auto start = static_cast<std::size_t>(match[0].data() - text.data());
    result.append(text, copied, start - copied);
    copied = start + match[0].size();
    if (const auto value = resolved(foundation::trimmedBlanks({match[1].data(), match[1].size()}))) {
      result += *value;
    } else {
      result.append(text, start, match[0].size());
    }
  }
  result.append(text, copied);
  return result;
}

constexpr std::size_t kSize = 1 << 20;

std::string repeated(std::string_view piece) {
  std::string text;
  while (text.size() < kSize) text += piece;
  return text;
}

std::string noPlaceholders() {
  return repeated("Now take a picture of the whole front of your house, please; stand back as far as you can.\n");
}

std::string fewPlaceholders() {
  return repeated(
      "Thank you. Now take a picture of the whole front of your house, please; stand back as far as you can. "
      "If it is dark already, come back tomorrow: nothing of what you told us is lost. We have your house "
      "at {{ case.address.street }} in our records.\n");
}

std::string manyPlaceholders() {
  return repeated(
      "Dear {{case.policy.holder}}, is {{ case.address.street }}, {{{case.address.city}}} right? "
      "{{case.policy.unknown}}\n");
}

std::string onlyBraces() {
  return std::string(kSize, '{');
}
std::string singleBraces() {
  return repeated("{ ");
}
std::string pairsOfBraces() {
  return repeated("{{x.a}}");
}
std::string openLines() {
  return repeated("{{ case.address.street \n");
}
std::string openThroughout() {
  return repeated("{{ case.address.street }");
}

template <std::string (*parse)(std::string_view), std::string (*make)()>
void filling(benchmark::State& state) {
  const std::string text = make();
  if (parse(text) != parseWithKestrom(text)) state.SkipWithError("the parsers disagree");
  for (auto step : state) benchmark::DoNotOptimize(parse(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

template <std::string (*make)()>
void add(const std::string& kind) {
  benchmark::RegisterBenchmark(("placeholders/kestrom/" + kind).c_str(), filling<parseWithKestrom, make>);
  benchmark::RegisterBenchmark(("placeholders/re2/" + kind).c_str(), filling<parseWithRE2, make>);
}

const bool kAreAdded = [] {
  add<noPlaceholders>("none");
  add<fewPlaceholders>("few");
  add<manyPlaceholders>("many");
  add<onlyBraces>("braces");
  add<singleBraces>("singles");
  add<pairsOfBraces>("pairs");
  add<openLines>("lines");
  add<openThroughout>("open");
  return true;
}();

}  // namespace
}  // namespace kestrom::benchmarks

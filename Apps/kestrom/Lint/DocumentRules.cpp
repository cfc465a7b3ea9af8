#include "Apps/kestrom/Lint/DocumentRules.hpp"

#include <algorithm>
#include <string>
#include <string_view>

namespace kestrom::app {

using foundation::DecodingError;
using foundation::JSONType;
using foundation::JSONValue;

namespace {

/// The node whose own fields hold the path: it ends with the last list of nodes in it.
std::string_view nodePath(std::string_view path) {
  constexpr std::string_view kList = "sequence[";
  const std::size_t list = path.rfind(kList);
  if (list == std::string_view::npos) return {};
  return path.substr(0, path.find(']', list) + 1);
}

void reportDuplicateKeys(const Place& place, LintReport& report) {
  std::vector<std::string_view> keys;
  const JSONValue object = place.value();
  const auto end = object.end();
  for (auto member = object.begin(); member != end; ++member, ++member) keys.push_back((*member).string());
  std::ranges::sort(keys);
  for (auto at = std::ranges::adjacent_find(keys); at != keys.end(); at = std::adjacent_find(at, keys.end())) {
    const std::string_view key = *at;
    report.add(rules::kDuplicateKey, place.member(key),
               "the key " + quoted(key) +
                   " stands more than once in this object; the device reads the last one and never sees the others");
    at = std::find_if(at, keys.end(), [&](std::string_view other) { return other != key; });
  }
}

}  // namespace

UnsoundNodes reportDecodingErrors(const std::vector<DecodingError>& errors, DocumentPlaces& places,
                                  LintReport& report) {
  UnsoundNodes unsound;
  for (const DecodingError& error : errors) {
    const bool isTooDeep = error.kind == DecodingError::Kind::nestingTooDeep;
    report.add(isTooDeep ? rules::kNestingLimit : rules::kDecodingError, places.resolve(error.path),
               error.description + "; the device refuses the whole template, and the conversation does not start");
    const std::string_view node = nodePath(error.path);
    if (!node.empty()) unsound.add(places.resolve(node));
  }
  return unsound;
}

void reportDuplicateKeys(DocumentPlaces& places, LintReport& report) {
  struct Open {
    Place place;
    JSONValue::Iterator next;
    JSONValue::Iterator end;
    std::size_t index;
  };
  std::vector<Open> open;
  const auto enter = [&](const Place& place) {
    const JSONValue value = place.value();
    if (value.type() == JSONType::object) reportDuplicateKeys(place, report);
    if (value.type() == JSONType::object || value.type() == JSONType::array) {
      open.push_back({place, value.begin(), value.end(), 0});
    }
  };

  enter(places.root());
  while (!open.empty()) {
    Open& top = open.back();
    if (top.next == top.end) {
      open.pop_back();
      continue;
    }
    std::string_view key;
    if (top.place.value().type() == JSONType::object) {
      key = (*top.next).string();
      ++top.next;
    }
    const JSONValue value = *top.next;
    ++top.next;
    const std::size_t index = top.index++;
    if (value.type() != JSONType::object && value.type() != JSONType::array) continue;
    enter(key.data() == nullptr ? top.place.element(index, value) : top.place.member(key, value));
  }
}

}  // namespace kestrom::app

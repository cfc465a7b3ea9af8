#include "Apps/kestrom/Lint/DocumentRules.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace kestrom::app {

using foundation::DecodingError;
using foundation::JSONValue;

namespace {

/// The objects that make up a template; `other` is everything that the device does not read.
enum class ObjectKind : std::uint8_t {
  other,
  root,
  node,
  options,
  option,
  arm,
  list,
  guard,
  test,
  repeatableDetails,
};

/// A key that is read in an object, and what the objects are that it holds.
struct KnownKey {
  std::string_view key;
  ObjectKind content = ObjectKind::other;
};

std::span<const KnownKey> knownKeys(ObjectKind kind) {
  using enum ObjectKind;
  static constexpr std::array kList{KnownKey{"sequence", node}};
  static constexpr std::array kNode{
      KnownKey{"type"},
      KnownKey{"options", options},
      KnownKey{"key"},
      KnownKey{"id"},
      KnownKey{"text"},
      KnownKey{"repeatText"},
      KnownKey{"repeatable"},
      KnownKey{"sequence", node},
      KnownKey{"adventures", arm},
      KnownKey{"branches", guard},
      KnownKey{"repeatableDetails", repeatableDetails},
  };
  static constexpr std::array kOptions{
      KnownKey{"values", option}, KnownKey{"maxValue"},  KnownKey{"minValue"},
      KnownKey{"maxLength"},      KnownKey{"minLength"}, KnownKey{"cvEndpoint"},
  };
  static constexpr std::array kOption{
      KnownKey{"text"}, KnownKey{"key"}, KnownKey{"showCamera"}, KnownKey{"completed"}, KnownKey{"deselectOthers"},
  };
  static constexpr std::array kArm{KnownKey{"value"}, KnownKey{"key"}, KnownKey{"adventure", list}};
  static constexpr std::array kGuard{KnownKey{"logicalOperator"}, KnownKey{"cases", test}, KnownKey{"branch", list}};
  static constexpr std::array kTest{KnownKey{"operator"}, KnownKey{"value"}};
  static constexpr std::array kRepeatableDetails{KnownKey{"maxRepeats"}, KnownKey{"repeatText"}};
  switch (kind) {
    case other:
      return {};
    case root:
    case list:
      return kList;
    case node:
      return kNode;
    case options:
      return kOptions;
    case option:
      return kOption;
    case arm:
      return kArm;
    case guard:
      return kGuard;
    case test:
      return kTest;
    case repeatableDetails:
      return kRepeatableDetails;
  }
  return {};
}

ObjectKind contentOf(ObjectKind kind, std::string_view key) {
  const auto known = knownKeys(kind);
  const auto found = std::ranges::find(known, key, &KnownKey::key);
  return found == known.end() ? ObjectKind::other : found->content;
}

/// Whether one key becomes the other by writing letters small, or by one character too many, missing or wrong.
bool isOneSlipAway(std::string_view written, std::string_view known) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  if (std::ranges::equal(written, known, {}, lower, lower)) return true;
  if (written.size() < known.size()) std::swap(written, known);
  if (written.size() - known.size() > 1) return false;
  const auto same = static_cast<std::size_t>(std::ranges::mismatch(written, known).in1 - written.begin());
  const std::size_t skipped = written.size() == known.size() ? 1 : 0;
  return written.substr(same + 1) == known.substr(std::min(same + skipped, known.size()));
}

/// The node whose own fields hold the path: it ends with the last list of nodes in it.
std::string_view nodePath(std::string_view path) {
  const std::size_t list = path.rfind("sequence[");
  if (list == std::string_view::npos) return {};
  return path.substr(0, path.find(']', list) + 1);
}

void checkKeys(const Place& place, ObjectKind kind, LintReport& report) {
  std::vector<std::string_view> keys;
  const JSONValue object = place.value();
  const auto end = object.end();
  for (auto member = object.begin(); member != end; ++member, ++member) keys.push_back((*member).string());
  std::ranges::sort(keys);

  for (auto at = keys.begin(); at != keys.end();) {
    const std::string_view key = *at;
    const auto next = std::find_if(at, keys.end(), [key](std::string_view other) { return other != key; });
    if (next - at > 1) {
      report.add(rules::kDuplicateKey, place.member(key),
                 "the key " + quoted(key) + " stands " + std::to_string(next - at) +
                     " times in this object; the device reads the last one alone, as if the others were not written");
    }
    // Beside the right key, one that resembles it is more likely meant as it is.
    const auto known = knownKeys(kind);
    const auto meant = std::ranges::find_if(known, [&](const KnownKey& candidate) {
      return isOneSlipAway(key, candidate.key) && !std::ranges::binary_search(keys, candidate.key);
    });
    if (meant != known.end()) {
      report.add(
          rules::kMisspeltKey, place.member(key),
          "the key " + quoted(key) + " is ignored, as if it were not there; is " + quoted(meant->key) + " meant?");
    }
    at = next;
  }
}

}  // namespace

std::string refusal(std::string reason) {
  return std::move(reason) + "; the device refuses the whole template, and the conversation does not start";
}

UnsoundNodes reportDecodingErrors(const std::vector<DecodingError>& errors, DocumentPlaces& places,
                                  LintReport& report) {
  UnsoundNodes unsound;
  for (const DecodingError& error : errors) {
    const bool isTooDeep = error.kind == DecodingError::Kind::nestingTooDeep;
    report.add(isTooDeep ? rules::kNestingLimit : rules::kDecodingError, places.resolve(error.path),
               refusal(error.description));
    const std::string_view node = nodePath(error.path);
    if (!node.empty()) unsound.add(places.resolve(node));
  }
  return unsound;
}

void reportKeys(DocumentPlaces& places, LintReport& report) {
  struct Open {
    Place place;
    ObjectKind kind;
    JSONValue::Iterator next;
    JSONValue::Iterator end;
    std::size_t index;
  };
  std::vector<Open> open;
  const auto enter = [&](const Place& place, ObjectKind kind) {
    const JSONValue value = place.value();
    if (value.isObject()) checkKeys(place, kind, report);
    if (value.isObject() || value.isArray()) open.push_back({place, kind, value.begin(), value.end(), 0});
  };

  enter(places.root(), ObjectKind::root);
  while (!open.empty() && !report.isCut()) {
    Open& top = open.back();
    if (top.next == top.end) {
      open.pop_back();
      continue;
    }
    const bool isObject = top.place.value().isObject();
    const std::string_view key = isObject ? (*top.next).string() : std::string_view{};
    if (isObject) ++top.next;
    const JSONValue value = *top.next;
    ++top.next;
    const std::size_t index = top.index++;
    if (!value.isObject() && !value.isArray()) continue;
    if (isObject) {
      enter(top.place.member(key, value), contentOf(top.kind, key));
    } else {
      enter(top.place.element(index, value), top.kind);
    }
  }
}

}  // namespace kestrom::app

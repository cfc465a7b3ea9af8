#include "Platform/Foundation/JSONDecoding.hpp"

#include <algorithm>

namespace kestrom::foundation {

std::string DecodingContext::pathText() const {
  std::string text;
  for (const PathComponent& component : _path) {
    if (component.key.data() == nullptr) {
      text += '[' + std::to_string(component.index) + ']';
    } else {
      if (!text.empty()) text += '.';
      text += component.key;
    }
  }
  return text;
}

void DecodingContext::fail(DecodingError::Kind kind, std::string description, std::string_view key) {
  if (isStopped()) return;
  if (_attempts > 0) {
    // Nobody reads the error of a form that is only tried, so its path is not worth building.
    _errors.push_back({kind, {}, std::move(description)});
    return;
  }
  if (key.data() != nullptr) enterKey(key);
  _errors.push_back({kind, pathText(), std::move(description)});
  if (key.data() != nullptr) leave();
}

void DecodingContext::defer(JSONValue array, void* list, DecodeElement decodeElement,
                            std::optional<std::size_t> maximumNesting) {
  if (maximumNesting && _level >= *maximumNesting) {
    fail(DecodingError::Kind::nestingTooDeep,
         "lists nest deeper than the limit of " + std::to_string(*maximumNesting) + " levels");
    return;
  }
  const std::size_t level = maximumNesting ? _level + 1 : _level;
  const auto own = _path.begin() + static_cast<std::ptrdiff_t>(_elementPath);
  _deferred.push_back({array.begin(), array.end(), list, decodeElement, 0, level, _elementPath, {own, _path.end()}});
}

void DecodingContext::runDeferred() {
  while (!_deferred.empty() && !isStopped()) {
    DeferredList& list = _deferred.back();
    if (list.next == list.end) {
      _deferred.pop_back();
      continue;
    }
    // The path below the list is what the list's parent left there; only the list's own piece may have been
    // overwritten.
    _path.resize(list.sharedPath);
    _path.insert(_path.end(), list.ownPath.begin(), list.ownPath.end());
    enterIndex(list.index);
    _level = list.level;
    _elementPath = _path.size();

    const JSONValue element = *list.next;
    ++list.next;
    ++list.index;
    const auto known = static_cast<std::ptrdiff_t>(_deferred.size());
    list.decodeElement(list.list, element, *this);
    // The last list is taken up first, so what the element deferred is turned round to keep the document's order.
    std::reverse(_deferred.begin() + known, _deferred.end());
  }
  _path.clear();
  _level = 0;
  _elementPath = 0;
}

}  // namespace kestrom::foundation

#include "Apps/kestrom/Lint/DocumentPlaces.hpp"

#include <algorithm>
#include <charconv>

namespace kestrom::app {

using foundation::JSONType;
using foundation::JSONValue;

Place Place::member(std::string_view key) const {
  const JSONValue here = value();
  return member(key, here.member(key).value_or(here));
}

Place Place::member(std::string_view key, JSONValue value) const {
  return _places->add(_index, key, 0, value);
}

Place Place::element(std::size_t index) const {
  const JSONValue here = value();
  JSONValue found = here;
  if (here.type() == JSONType::array) {
    std::size_t at = 0;
    for (const JSONValue candidate : here) {
      if (at++ < index) continue;
      found = candidate;
      break;
    }
  }
  return element(index, found);
}

Place Place::element(std::size_t index, JSONValue value) const {
  return _places->add(_index, {}, index, value);
}

Place Place::parent() const {
  return {_places, _places->_entries[_index].parent};
}

JSONValue Place::value() const {
  return _places->_entries[_index].value;
}

std::string Place::path() const {
  std::vector<std::uint32_t> steps;
  for (std::uint32_t at = _index; at != 0; at = _places->_entries[at].parent) steps.push_back(at);
  std::string text;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    const DocumentPlaces::Entry& entry = _places->_entries[*step];
    if (entry.key.data() == nullptr) {
      text += '[' + std::to_string(entry.index) + ']';
    } else {
      if (!text.empty()) text += '.';
      text += entry.key;
    }
  }
  return text;
}

bool Place::isApartInList(const Place& other, std::string_view listKey) const {
  const auto& entries = _places->_entries;
  std::uint32_t mine = _index;
  std::uint32_t theirs = other._index;
  while (entries[mine].depth > entries[theirs].depth) mine = entries[mine].parent;
  while (entries[theirs].depth > entries[mine].depth) theirs = entries[theirs].parent;
  // Places are not unique, so two of them are the same where they show the same value.
  const auto differ = [&](std::uint32_t a, std::uint32_t b) {
    return entries[a].value.position() != entries[b].value.position();
  };
  if (!differ(mine, theirs)) return false;
  while (differ(entries[mine].parent, entries[theirs].parent)) {
    mine = entries[mine].parent;
    theirs = entries[theirs].parent;
  }
  return entries[mine].key.data() == nullptr && entries[entries[mine].parent].key == listKey;
}

DocumentPlaces::DocumentPlaces(JSONValue root) {
  _entries.push_back({0, 0, {}, 0, root});
}

Place DocumentPlaces::add(std::uint32_t parent, std::string_view key, std::size_t index, JSONValue value) {
  _entries.push_back({parent, _entries[parent].depth + 1, key, index, value});
  return {this, static_cast<std::uint32_t>(_entries.size() - 1)};
}

Place DocumentPlaces::resolve(std::string_view path) {
  Place place = root();
  while (!path.empty()) {
    if (path.front() == '[') {
      std::size_t index = 0;
      std::from_chars(path.data() + 1, path.data() + path.size(), index);
      place = place.element(index);
      path.remove_prefix(path.find(']') + 1);
    } else {
      const std::size_t length = std::min(path.find_first_of(".["), path.size());
      place = place.member(path.substr(0, length));
      path.remove_prefix(length);
    }
    if (path.starts_with('.')) path.remove_prefix(1);
  }
  return place;
}

}  // namespace kestrom::app

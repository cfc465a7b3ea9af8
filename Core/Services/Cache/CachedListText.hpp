#pragma once

#include "Core/Services/Cache/CacheUnique.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::services {

/// A cached list as the text of its file, in which one element is exchanged without touching the others.
template <CacheUnique Element>
class CachedListText {
 public:
  /// Absent when JSON has no form for an element.
  static std::optional<CachedListText> of(const std::vector<Element>& elements, foundation::DateStrategy dates) {
    CachedListText list;
    for (const Element& element : elements) {
      auto text = encoded(element, dates);
      if (!text) return std::nullopt;
      list.append(cacheKey(element), *text);
    }
    return list;
  }

  const std::string& text() const { return _text; }

  /// Puts `element` in the place of the last one with its key, or behind all where there is none. False when JSON has
  /// no form for it; then nothing has changed.
  bool upsert(const Element& element, foundation::DateStrategy dates) {
    auto text = encoded(element, dates);
    if (!text) return false;
    std::string key = cacheKey(element);
    std::size_t end = _text.size() - 1;
    for (auto entry = _entries.rbegin(); entry != _entries.rend(); ++entry) {
      const std::size_t begin = end - entry->length;
      if (entry->key == key) {
        _text.replace(begin, entry->length, *text);
        entry->length = text->size();
        return true;
      }
      end = begin - 1;
    }
    append(std::move(key), *text);
    return true;
  }

 private:
  struct Entry {
    std::string key;
    std::size_t length;
  };

  static std::optional<std::string> encoded(const Element& element, foundation::DateStrategy dates) {
    foundation::JSONWriter writer(dates);
    foundation::Coder<Element>::encode(element, writer);
    if (!writer.isFaithful()) return std::nullopt;
    return std::move(writer).text();
  }

  void append(std::string key, const std::string& text) {
    _text.pop_back();
    if (!_entries.empty()) _text += ',';
    _text += text;
    _text += ']';
    _entries.push_back({std::move(key), text.size()});
  }

  std::string _text = "[]";
  std::vector<Entry> _entries;
};

}  // namespace kestrom::services

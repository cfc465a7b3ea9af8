#pragma once

#include "Platform/Foundation/JSONDocument.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::app {

class DocumentPlaces;

/// A place inside a document: its path and the value that stands there. A light handle, good as long as the
/// `DocumentPlaces` that it comes from.
class Place {
 public:
  /// The member of the object that stands here. Where there is none, the place keeps the object's value.
  Place member(std::string_view key) const;
  /// The element of the list that stands here; where there is none, as above.
  Place element(std::size_t index) const;
  /// The same when the value is at hand, which saves the search.
  Place member(std::string_view key, foundation::JSONValue value) const;
  Place element(std::size_t index, foundation::JSONValue value) const;

  Place parent() const;
  foundation::JSONValue value() const;
  /// Path in the form of the decoder's errors, like "sequence[3].options.values[0].key"; empty for the document.
  std::string path() const;

  /// True when this place and `other` lie below different elements of one list with the key `listKey`, that list being
  /// the innermost thing that holds both.
  bool isApartInList(const Place& other, std::string_view listKey) const;

 private:
  friend class DocumentPlaces;
  Place(DocumentPlaces* places, std::uint32_t index) : _places(places), _index(index) {}

  DocumentPlaces* _places;
  std::uint32_t _index;
};

/// The places of one document that somebody talks about. Each knows its parent, so that a deep place costs no copy of a
/// long path; the text of a path is built only for a finding. The document must outlive it, and so must the keys.
class DocumentPlaces {
 public:
  explicit DocumentPlaces(foundation::JSONValue root);
  DocumentPlaces(const DocumentPlaces&) = delete;
  DocumentPlaces& operator=(const DocumentPlaces&) = delete;

  Place root() { return {this, 0}; }

  /// The place of a path of the decoder, whose keys hold neither "." nor "[".
  Place resolve(std::string_view path);

 private:
  friend class Place;

  struct Entry {
    std::uint32_t parent;
    std::uint32_t depth;
    std::string_view key;
    std::size_t index;
    foundation::JSONValue value;
  };

  Place add(std::uint32_t parent, std::string_view key, std::size_t index, foundation::JSONValue value);

  std::vector<Entry> _entries;
};

}  // namespace kestrom::app

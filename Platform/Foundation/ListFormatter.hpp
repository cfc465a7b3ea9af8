#pragma once

#include <memory>
#include <span>
#include <string>

namespace kestrom::foundation {

/// Joins texts to one enumeration in the way of a language: "a, b, and c" in English as written in the United States
/// (the list patterns of Unicode's CLDR). Immutable after construction; may be shared between threads.
class ListFormatter {
 public:
  /// `locale` as ICU names it, for example "en_US".
  explicit ListFormatter(const std::string& locale);
  ~ListFormatter();
  ListFormatter(ListFormatter&&) noexcept;
  ListFormatter& operator=(ListFormatter&&) noexcept;

  /// The enumeration; empty for no texts.
  std::string string(std::span<const std::string> texts) const;

 private:
  struct Formatter;
  std::unique_ptr<Formatter> _formatter;
};

}  // namespace kestrom::foundation

#pragma once

#include "Kestrom/Export.hpp"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kestrom::foundation {

/// What a packaged piece of software tells of itself: the host application or the kit. Any thread.
class KESTROM_API Bundle {
 public:
  virtual ~Bundle() = default;

  /// The text under `key` in the information dictionary, for example "CFBundleShortVersionString"; absent when there is
  /// no such key or its value is no text.
  virtual std::optional<std::string> infoValue(std::string_view key) const = 0;
};

/// A bundle whose information a host hands over, for systems that keep none.
class KESTROM_API MapBundle final : public Bundle {
 public:
  using Values = std::map<std::string, std::string, std::less<>>;

  explicit MapBundle(Values values) : _values(std::move(values)) {}

  std::optional<std::string> infoValue(std::string_view key) const override {
    const auto found = _values.find(key);
    return found == _values.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  Values _values;
};

}  // namespace kestrom::foundation

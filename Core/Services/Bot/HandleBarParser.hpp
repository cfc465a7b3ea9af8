#pragma once

#include "Platform/Foundation/JSONDocument.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace kestrom::services {

/// Fills the placeholders of bot texts from the raw JSON of the case. A placeholder is a path in two or three braces
/// within one line, such as "{{case.address.city}}"; its first piece names the case and is not looked at, and a path of
/// that piece alone stands for the whole case. Made once for a conversation; any thread.
class HandleBarParser {
 public:
  /// `json` is the case, an object; null stands for an empty one.
  explicit HandleBarParser(std::shared_ptr<const foundation::JSONDocument> json);

  /// `text` with every placeholder replaced that resolves. One that does not stays as it stands, braces included.
  std::string parse(std::string_view text) const;

 private:
  bool appendResolved(std::string_view path, std::string& out) const;

  std::shared_ptr<const foundation::JSONDocument> _json;
};

}  // namespace kestrom::services

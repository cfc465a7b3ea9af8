#pragma once

#include "Kestrom/Export.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::networking {

/// One header of a message. Names are compared without regard to case (RFC 9110).
struct HTTPHeader {
  std::string name;
  std::string value;

  friend bool operator==(const HTTPHeader&, const HTTPHeader&) = default;
};

/// The headers of a message, each name once, in the order in which the names first came. Value type; any thread.
class KESTROM_API HTTPHeaders {
 public:
  /// Gives the header this value, in place of an earlier one.
  void set(std::string_view name, std::string_view value);

  /// Adds to the values of the header: behind an earlier one and a comma, "a,b".
  void add(std::string_view name, std::string_view value);

  std::optional<std::string> value(std::string_view name) const;

  std::vector<HTTPHeader>::const_iterator begin() const { return _headers.begin(); }
  std::vector<HTTPHeader>::const_iterator end() const { return _headers.end(); }

  friend bool operator==(const HTTPHeaders&, const HTTPHeaders&) = default;

 private:
  HTTPHeader* find(std::string_view name);

  std::vector<HTTPHeader> _headers;
};

}  // namespace kestrom::networking

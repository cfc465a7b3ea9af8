#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

/// One "name=value" of a query, as plain text. Without a value it stands for a name alone: "a" in "?a&b=1".
struct URLQueryItem {
  std::string name;
  std::optional<std::string> value;

  friend bool operator==(const URLQueryItem&, const URLQueryItem&) = default;
};

/// The parts of a URL, to read or to build one. Parts that are not set are not in the URL. Value type; any thread.
class URLComponents {
 public:
  URLComponents() = default;

  /// The parts of `url`; those that are not set anew stay in its text as they are, port and fragment included.
  explicit URLComponents(const URL& url);

  void setScheme(std::string_view scheme) { _scheme = scheme; }

  /// The host as it stands in a URL: a name, an IPv4 address or an IPv6 address in brackets.
  void setHost(std::string_view host) { _encodedHost = host; }
  /// The host, percent-decoded; absent when there is none, empty in "file:///a".
  std::optional<std::string> host() const;

  /// The path as plain text. What a path may not hold is percent-encoded, "%" included.
  void setPath(std::string_view path);

  /// The query as plain text; an empty list is the empty query, "?". Everything that has a meaning in a query is
  /// percent-encoded, "+" too, which many servers would read as a blank.
  void setQueryItems(const std::vector<URLQueryItem>& items);
  /// The items of the query in their order, percent-decoded; a "+" stays one. Absent when there is no query, none when
  /// it is empty.
  std::optional<std::vector<URLQueryItem>> queryItems() const;

  /// The URL of these parts; absent when they make none: nothing is set, a host that is no host, a path that does not
  /// start with "/" behind a host, or parts that would read as others, such as a path "//a" without a host.
  std::optional<URL> url() const;

 private:
  bool hasPlainParts() const;

  std::optional<std::string> _scheme;
  std::optional<std::string> _encodedUserInfo;
  std::optional<std::string> _encodedHost;
  std::optional<std::string> _port;
  std::string _encodedPath;
  std::optional<std::string> _encodedQuery;
  std::optional<std::string> _encodedFragment;

  friend bool operator==(const URLComponents&, const URLComponents&) = default;
};

}  // namespace kestrom::foundation

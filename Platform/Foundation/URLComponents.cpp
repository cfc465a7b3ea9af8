#include "Platform/Foundation/URLComponents.hpp"

#include "Platform/Foundation/PercentEncoding.hpp"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <utility>

namespace kestrom::foundation {

namespace {

/// What a name or a value of a query holds unescaped: "&", "=" and "+" have a meaning there.
constexpr std::string_view kQueryItemCharacters = "!$'()*,;:@/?";

std::optional<std::string> textIf(bool isPresent, const auto& text) {
  return isPresent ? std::optional<std::string>(std::in_place, text.data(), text.size()) : std::nullopt;
}

}  // namespace

URLComponents::URLComponents(const URL& url) {
  const boost::urls::url_view parsed = *boost::urls::parse_uri_reference(url.absoluteString());
  _scheme = textIf(parsed.has_scheme(), parsed.scheme());
  _encodedUserInfo = textIf(parsed.has_userinfo(), parsed.encoded_userinfo());
  _encodedHost = textIf(parsed.has_authority(), parsed.encoded_host());
  _port = textIf(parsed.has_port(), parsed.port());
  _encodedPath = textIf(true, parsed.encoded_path()).value();
  _encodedQuery = textIf(parsed.has_query(), parsed.encoded_query());
  _encodedFragment = textIf(parsed.has_fragment(), parsed.encoded_fragment());
}

std::optional<std::string> URLComponents::host() const {
  if (!_encodedHost) return std::nullopt;
  return percentDecoded(*_encodedHost);
}

void URLComponents::setPath(std::string_view path) {
  _encodedPath = percentEncoded(path, kPathCharacters);
}

void URLComponents::setQueryItems(const std::vector<URLQueryItem>& items) {
  std::string query;
  for (const URLQueryItem& item : items) {
    if (&item != &items.front()) query += '&';
    query += percentEncoded(item.name, kQueryItemCharacters);
    if (item.value) query += '=' + percentEncoded(*item.value, kQueryItemCharacters);
  }
  _encodedQuery = std::move(query);
}

std::optional<std::vector<URLQueryItem>> URLComponents::queryItems() const {
  if (!_encodedQuery) return std::nullopt;
  std::vector<URLQueryItem> items;
  const std::string_view query = *_encodedQuery;
  for (std::size_t start = 0, end = 0; !query.empty() && start <= query.size(); start = end + 1) {
    end = std::min(query.find('&', start), query.size());
    const std::string_view pair = query.substr(start, end - start);
    const std::size_t equals = pair.find('=');
    URLQueryItem& item = items.emplace_back(percentDecoded(pair.substr(0, equals)));
    if (equals != std::string_view::npos) item.value = percentDecoded(pair.substr(equals + 1));
  }
  return items;
}

/// Whether each part ends where its text ends, as it does in nearly every address; then the text need not be taken
/// apart to see it.
bool URLComponents::hasPlainParts() const {
  constexpr std::string_view kDigits = "0123456789";
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz";
  constexpr std::string_view kNameCharacters = "abcdefghijklmnopqrstuvwxyz0123456789.-";
  const auto holdsOnly = [](std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
  };
  return _scheme && _encodedHost && !_encodedUserInfo && !_encodedFragment && !_scheme->empty() &&
         holdsOnly(*_scheme, kLetters) && !_encodedHost->empty() && holdsOnly(*_encodedHost, kNameCharacters) &&
         (!_port || holdsOnly(*_port, kDigits)) && _encodedPath.starts_with('/') &&
         _encodedPath.find_first_of("?#") == std::string::npos &&
         (!_encodedQuery || _encodedQuery->find('#') == std::string::npos);
}

std::optional<URL> URLComponents::url() const {
  std::string text;
  if (_scheme) text += *_scheme + ':';
  if (_encodedHost) {
    text += "//";
    if (_encodedUserInfo) text += *_encodedUserInfo + '@';
    text += *_encodedHost;
    if (_port) text += ':' + *_port;
  }
  text += _encodedPath;
  if (_encodedQuery) text += '?' + *_encodedQuery;
  if (_encodedFragment) text += '#' + *_encodedFragment;

  std::optional<URL> url = URL::parse(text);
  if (!url || hasPlainParts()) return url;
  // Parts that run into each other, such as a port within the host, show as other parts of the text.
  return URLComponents(*url) == *this ? url : std::nullopt;
}

}  // namespace kestrom::foundation

#include "Kestrom/Platform/URL.hpp"

#include "Platform/Foundation/PercentEncoding.hpp"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kestrom::foundation {

namespace {

std::string_view encodedPath(const std::string& text) {
  const auto parsed = boost::urls::parse_uri_reference(text);
  const auto path = parsed->encoded_path();
  return {path.data(), path.size()};
}

/// Without the slashes at its end; the root stays.
std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const auto parsed = boost::urls::parse_uri_reference({text.data(), text.size()});
  if (!parsed) return std::nullopt;
  // The library takes what no host or port may hold for the begin of a path: behind an authority a path starts with a
  // slash.
  if (parsed->has_authority() && !parsed->encoded_path().empty() && !parsed->encoded_path().starts_with('/')) {
    return std::nullopt;
  }
  return URL(std::string(text));
}

URL URL::fromFilePath(std::string_view path) {
  std::string text = "file://";
  if (!path.starts_with('/')) {
    // Otherwise the path's first component would stand where a URL has its host.
    std::error_code error;
    text += percentEncoded(std::filesystem::current_path(error).native(), kPathCharacters);
    if (!text.ends_with('/')) text += '/';
  }
  return URL(text + percentEncoded(path, kPathCharacters));
}

std::string_view URL::scheme() const {
  const auto parsed = boost::urls::parse_uri_reference(_text);
  return std::string_view(_text).substr(0, parsed->scheme().size());
}

std::string URL::path() const {
  return percentDecoded(withoutTrailingSlashes(encodedPath(_text)));
}

std::string URL::lastPathComponent() const {
  const std::string_view path = withoutTrailingSlashes(encodedPath(_text));
  if (path == "/") return "/";
  return percentDecoded(path.substr(path.rfind('/') + 1));
}

std::string URL::pathExtension() const {
  const std::string name = lastPathComponent();
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot + 1);
}

URL URL::appendingPathComponent(std::string_view component) const {
  const std::string_view path = encodedPath(_text);
  const auto pathEnd = static_cast<std::size_t>(path.data() - _text.data()) + path.size();
  const std::string_view name = component == "/" ? std::string_view{} : component;
  const std::string_view kept = withoutTrailingSlashes(path);
  std::string text = _text.substr(0, pathEnd - (path.size() - kept.size()));
  if (kept != "/") text += '/';
  text += percentEncoded(name, kPathSegmentCharacters);
  text.append(_text, pathEnd);
  return URL(std::move(text));
}

bool URL::isFileURL() const {
  const std::string_view name = scheme();
  constexpr std::string_view kFile = "file";
  return name.size() == kFile.size() &&
         std::equal(name.begin(), name.end(), kFile.begin(), [](char a, char b) { return (a | 0x20) == b; });
}

}  // namespace kestrom::foundation

#include "Platform/Foundation/URL.hpp"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kestrom::foundation {

namespace {

bool isUnreservedInSegment(char c) {
  constexpr std::string_view kOthers = "-._~!$&'()*+,;=:@";
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         kOthers.find(c) != std::string_view::npos;
}

std::string percentEncoded(std::string_view text, bool keepsSlashes) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (isUnreservedInSegment(c) || (keepsSlashes && c == '/')) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += '%';
      encoded += kHex[byte >> 4];
      encoded += kHex[byte & 15];
    }
  }
  return encoded;
}

/// Only for text that is known to parse: every escape in it is whole.
std::string percentDecoded(std::string_view text) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%') {
      decoded += static_cast<char>(digit(text[at + 1]) << 4 | digit(text[at + 2]));
      at += 2;
    } else {
      decoded += text[at];
    }
  }
  return decoded;
}

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
    text += percentEncoded(std::filesystem::current_path(error).native(), true);
    if (!text.ends_with('/')) text += '/';
  }
  return URL(text + percentEncoded(path, true));
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
  text += percentEncoded(name, false);
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

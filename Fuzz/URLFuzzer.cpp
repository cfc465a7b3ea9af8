// A text is a URL exactly when the grammar says so, stays as it was given, and what is built from it is one too.

#include "Fuzz/URLGrammar.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/URLComponents.hpp"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using kestrom::foundation::URL;
using kestrom::foundation::URLComponents;
using kestrom::fuzzing::isURIReference;

void require(bool holds) {
  if (!holds) std::abort();
}

void requireComponent(const URL& base, const std::string& component) {
  const URL longer = base.appendingPathComponent(component);
  require(isURIReference(longer.absoluteString()));
  require(longer.scheme() == base.scheme());
  if (!component.empty() && component != "/") require(longer.lastPathComponent() == component);
}

void requireFilePath(const std::string& path) {
  const URL url = URL::fromFilePath(path);
  require(isURIReference(url.absoluteString()) && url.isFileURL());
  if (!path.starts_with('/')) return;
  const std::size_t end = path.find_last_not_of('/');
  require(url.path() == (end == path.npos ? "/" : path.substr(0, end + 1)));
}

void requireParts(const URL& url) {
  URLComponents parts(url);
  require(parts.url() == url);
  const auto items = parts.queryItems();
  if (!items) return;
  parts.setQueryItems(*items);
  require(parts.queryItems() == items && parts.url() && isURIReference(parts.url()->absoluteString()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto url = URL::parse(text);
  require(url.has_value() == (!text.empty() && isURIReference(text)));
  requireFilePath(text);
  if (!url) return 0;

  require(url->absoluteString() == text && text.starts_with(url->scheme()));
  require(url->lastPathComponent().ends_with(url->pathExtension()));
  for (const char* component : {"", "/", "a", "../b", "50%?#", "\xFF"}) requireComponent(*url, component);
  requireComponent(*url, text);
  requireParts(*url);
  return 0;
}

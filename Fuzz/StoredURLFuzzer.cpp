// Any bytes as a text of a stored answer: no address of a file leads out of the documents directory.

#include "Core/Models/StoredURL.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrom::foundation::URL;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const URL directory = URL::fromFilePath("/now/Documents");
  const auto url = kestrom::models::storedURL(text, directory);
  if (!url) return 0;

  if (!url->isFileURL()) {
    if (url->absoluteString() != text || !text.contains("http")) std::abort();
    return 0;
  }
  const std::string path = url->path();
  if (!path.starts_with("/now/Documents/")) std::abort();
  const std::string name = path.substr(std::string_view("/now/Documents/").size());
  if (name.empty() || name == "." || name == ".." || name.contains('/') || name.contains('\0')) std::abort();
  if (kestrom::models::storedURL(url->absoluteString(), directory) != url) std::abort();
  return 0;
}

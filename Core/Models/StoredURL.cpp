#include "Core/Models/StoredURL.hpp"

namespace kestrom::models {

std::optional<foundation::URL> storedURL(std::string_view text, const foundation::URL& documentsDirectory) {
  const bool namesFile = text.contains("file://");
  if (!namesFile && !text.contains("http")) return std::nullopt;
  auto url = foundation::URL::parse(text);
  // The address of a file may be spelled otherwise, "FILE:/http" for example; it leads out of the directory as well.
  if (!url || (!namesFile && !url->isFileURL())) return url;

  const std::string name = url->lastPathComponent();
  const bool isFileName = !name.empty() && name != "." && name != ".." && !name.contains('/') && !name.contains('\0');
  if (!isFileName) return std::nullopt;
  return documentsDirectory.appendingPathComponent(name);
}

}  // namespace kestrom::models

#include "Core/Models/StoredURL.hpp"

namespace kestrom::models {

std::optional<foundation::URL> storedURL(std::string_view text, const foundation::URL& documentsDirectory) {
  const bool namesFile = text.find("file://") != std::string_view::npos;
  if (!namesFile && text.find("http") == std::string_view::npos) return std::nullopt;
  auto url = foundation::URL::parse(text);
  if (!url || !namesFile) return url;

  const std::string name = url->lastPathComponent();
  const bool leavesDirectory = name == "." || name == ".." || name.find('\0') != std::string::npos ||
                               (name != "/" && name.find('/') != std::string::npos);
  if (leavesDirectory) return std::nullopt;
  return documentsDirectory.appendingPathComponent(name);
}

}  // namespace kestrom::models

#include "Core/SDK/ProcessValues.hpp"

#include <atomic>
#include <mutex>
#include <utility>

namespace kestrom::session {

namespace {

std::atomic<KestromEnvironment> environmentValue = KestromEnvironment::production;
std::atomic<bool> loggingValue = false;

struct FontName {
  std::mutex mutex;
  std::optional<std::string> name;
};

FontName& fontName() {
  static auto* const kFontName = new FontName;
  return *kFontName;
}

}  // namespace

KestromEnvironment currentEnvironment() {
  return environmentValue;
}

void setCurrentEnvironment(KestromEnvironment environment) {
  environmentValue = environment;
}

std::optional<std::string> customFontFamilyName() {
  FontName& font = fontName();
  const std::lock_guard lock(font.mutex);
  return font.name;
}

void setCustomFontFamilyName(std::optional<std::string> name) {
  FontName& font = fontName();
  const std::lock_guard lock(font.mutex);
  font.name = std::move(name);
}

bool isLoggingEnabled() {
  return loggingValue;
}

void setLoggingEnabled(bool isEnabled) {
  loggingValue = isEnabled;
}

}  // namespace kestrom::session

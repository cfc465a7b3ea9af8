#include "Core/Services/Cache/CacheFilename.hpp"

#include <string_view>

namespace kestrom::services {

namespace {

std::string withoutSeparators(std::string_view identifier) {
  std::string name;
  for (const char each : identifier) {
    if (each == '/') {
      name += "%2F";
    } else if (each == '\0') {
      name += "%00";
    } else {
      name += each;
    }
  }
  return name;
}

}  // namespace

std::string CacheFilename::name() const {
  const auto* answers = std::get_if<Answers>(&_form);
  if (!answers) return "kestrom-events.json";
  return withoutSeparators(answers->organizationID) + "-" + withoutSeparators(answers->kestromID) + "-answers.json";
}

}  // namespace kestrom::services

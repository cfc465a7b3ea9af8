#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kestrom {

/// Which of the servers the kit talks to.
enum class KestromEnvironment : std::uint8_t { staging, sandbox, production };

/// What a host tells the kit about itself, once at its start.
struct KestromConfiguration {
  KestromConfiguration(std::string organization, KestromEnvironment server, std::optional<std::string> font)
      : organizationId(std::move(organization)), environment(server), fontFamilyName(std::move(font)) {}

  /// The organization whose brand the flow shows. Nothing checks it here.
  std::string organizationId;
  KestromEnvironment environment;
  /// Family of the font for all texts of the flow; absent: the system's.
  std::optional<std::string> fontFamilyName;

  friend bool operator==(const KestromConfiguration&, const KestromConfiguration&) = default;
};

}  // namespace kestrom

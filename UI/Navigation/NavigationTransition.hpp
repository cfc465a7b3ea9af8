#pragma once

#include "Core/SDK/KestromDeepLinkCredentials.hpp"

#include <optional>
#include <utility>
#include <variant>

namespace kestrom::ui {

/// A change of the screen that somebody asks for.
struct NavigationTransition {
  /// The first screen of every flow.
  struct Splash {
    std::optional<session::KestromDeepLinkCredentials> deepLinkCredentials;

    friend bool operator==(const Splash&, const Splash&) = default;
  };

  std::variant<Splash> form;

  static NavigationTransition splash(std::optional<session::KestromDeepLinkCredentials> deepLinkCredentials) {
    return {Splash{std::move(deepLinkCredentials)}};
  }
};

}  // namespace kestrom::ui

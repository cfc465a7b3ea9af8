#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrom::ui {

/// How a flow was brought on screen.
enum class ViewPresentationType : std::uint8_t { standalone, presented, pushed };

constexpr std::string_view displayText(ViewPresentationType type) {
  constexpr std::array<std::string_view, 3> kTexts{"Standalone", "Presented", "Pushed"};
  return kTexts[static_cast<std::size_t>(type)];
}

}  // namespace kestrom::ui

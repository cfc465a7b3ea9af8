#include "Apps/sandbox/DateForms.hpp"

#include "Platform/Foundation/DateText.hpp"

#include <chrono>
#include <cmath>

namespace kestrom::sandbox {

std::string millisecondsText(foundation::Date date) {
  const double milliseconds = std::round(date.secondsSince1970() * 1000);
  const double seconds = std::floor(milliseconds / 1000);
  std::string text = foundation::iso8601String(foundation::Date::fromSecondsSince1970(seconds));
  const std::string digits = std::to_string(1000 + static_cast<int>(milliseconds - seconds * 1000));
  text.replace(text.size() - 1, 1, "." + digits.substr(1) + "Z");
  return text;
}

foundation::Date now() {
  const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
  return foundation::Date::fromSecondsSince1970(since1970.count());
}

}  // namespace kestrom::sandbox

#include "Kestrom/KestromEvent.hpp"

#include <array>

namespace kestrom {

std::string_view KestromEvent::name() const {
  static constexpr std::array<std::string_view, 5> kNames{"user_logged_in", "question_asked", "question_answered",
                                                          "sdk_closed", "kestrom_completed"};
  static_assert(kNames.size() == std::variant_size_v<decltype(Trigger::form)>);
  return kNames[trigger.form.index()];
}

}  // namespace kestrom

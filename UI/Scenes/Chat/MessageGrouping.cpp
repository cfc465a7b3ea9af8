#include "UI/Scenes/Chat/MessageGrouping.hpp"

namespace kestrom::ui {

models::BotMessageGroupingGuide groupingGuide(std::span<const models::Message> rows, std::size_t index) {
  using Guide = models::BotMessageGroupingGuide;
  const bool isBehindBot = index > 0 && rows[index - 1].isBotMessage();
  const bool isBeforeBot = index + 1 < rows.size() && rows[index + 1].isBotMessage();
  if (isBehindBot) return isBeforeBot ? Guide::groupPart : Guide::last;
  return isBeforeBot ? Guide::first : Guide::standalone;
}

}  // namespace kestrom::ui

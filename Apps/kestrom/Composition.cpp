#include "Apps/kestrom/Composition.hpp"

#include "Core/Services/Bot/SharedListFormatter.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Platform/Foundation/Calendar.hpp"
#include "Platform/Foundation/UUID.hpp"
#include "Platform/Imaging/ImageCodec.hpp"

#include <utility>

namespace kestrom::app {

foundation::Date systemTime() {
  return foundation::SystemClock().now();
}

services::ConversationConversion makeConversion(std::shared_ptr<const foundation::JSONDocument> rawCase, Now now) {
  return services::ConversationConversion({
      .handlebarParser = services::HandleBarParser(std::move(rawCase)),
      .listFormatter = services::sharedListFormatter(),
      .imageCodec = std::make_shared<imaging::NoImageCodec>(),
      .makeIdentifier = foundation::makeUUIDString,
      .presentYear = [now = std::move(now)] { return foundation::calendarYear(now()); },
  });
}

}  // namespace kestrom::app

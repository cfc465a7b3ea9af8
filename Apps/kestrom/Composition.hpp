#pragma once

#include "Core/Services/Bot/ConversationConversion.hpp"
#include "Kestrom/Platform/Date.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <functional>
#include <memory>

/// What the commands that have no server behind them hand to the kit's parts.
namespace kestrom::app {

using Now = std::function<foundation::Date()>;

/// The present time of the system's clock.
foundation::Date systemTime();

/// The conversion of a walk into rows. `rawCase` fills the placeholders; null stands for an empty case.
services::ConversationConversion makeConversion(std::shared_ptr<const foundation::JSONDocument> rawCase, Now now);

}  // namespace kestrom::app

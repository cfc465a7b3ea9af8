#pragma once

#include "Kestrom/KestromConfiguration.hpp"

#include <optional>
#include <string>

/// The three values that hold for the whole process, because what reads them is below every object of a flow. A host
/// sets them before a flow starts; reading and writing is safe from any thread.
namespace kestrom::session {

/// The server of the next request that is built; `production` until the host says otherwise.
KestromEnvironment currentEnvironment();
void setCurrentEnvironment(KestromEnvironment environment);

/// Family of the font for all texts; absent: the system's.
std::optional<std::string> customFontFamilyName();
void setCustomFontFamilyName(std::optional<std::string> name);

/// Whether anything is logged at all; false until the host says otherwise.
bool isLoggingEnabled();
void setLoggingEnabled(bool isEnabled);

}  // namespace kestrom::session

#pragma once

/// All that a host needs to embed the kit.
#include "Kestrom/KestromConfiguration.hpp"
#include "Kestrom/KestromError.hpp"
#include "Kestrom/KestromEvent.hpp"
#include "Kestrom/KestromSDK.hpp"
#include "Kestrom/KestromStatus.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Kestrom/Platform/MainQueue.hpp"
#include "Kestrom/Platform/NavigationController.hpp"
#include "Kestrom/Version.hpp"

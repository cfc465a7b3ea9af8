#pragma once

#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Kestrom/KestromError.hpp"

namespace kestrom::sdk {

/// What a host sees of a failed status check.
KestromError statusCheckFailure(const services::RESTError& error);

}  // namespace kestrom::sdk

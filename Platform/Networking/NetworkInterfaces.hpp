#pragma once

#include <functional>

namespace kestrom::networking {

/// Tells whether the device has a network at all. Called on the session's I/O thread when a request has failed.
using NetworkProbe = std::function<bool()>;

/// Whether an interface beside the loopback is up and has an address that reaches beyond its own link. True where the
/// system does not tell.
bool hasNetworkInterface();

}  // namespace kestrom::networking

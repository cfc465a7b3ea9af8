#include "Platform/Networking/NetworkInterfaces.hpp"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <memory>

namespace kestrom::networking {

namespace {

bool isUsable(const ifaddrs& interface) {
  constexpr unsigned kUp = IFF_UP | IFF_RUNNING;
  if ((interface.ifa_flags & kUp) != kUp || (interface.ifa_flags & IFF_LOOPBACK) != 0) return false;
  if (!interface.ifa_addr) return false;
  if (interface.ifa_addr->sa_family == AF_INET) return true;
  if (interface.ifa_addr->sa_family != AF_INET6) return false;
  // Every interface gives itself a link-local address, also one that no network answers on.
  const auto* address = reinterpret_cast<const sockaddr_in6*>(interface.ifa_addr);
  return !IN6_IS_ADDR_LINKLOCAL(&address->sin6_addr);
}

}  // namespace

bool hasNetworkInterface() {
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return true;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> interfaces(first, &::freeifaddrs);
  for (const ifaddrs* interface = first; interface; interface = interface->ifa_next) {
    if (isUsable(*interface)) return true;
  }
  return false;
}

}  // namespace kestrom::networking

// A host that ends while the kit is busy:
//
//   PORT CERTIFICATE TURNS   asks for the state of a case a few times, gives way TURNS times, and returns

#include <Kestrom/Kestrom.hpp>

#include <string>
#include <thread>

int main(int, char** arguments) {
  kestrom::LinuxPlatformOptions options;
  options.connectTo = {"127.0.0.1", static_cast<std::uint16_t>(std::stoi(arguments[1]))};
  options.certificateAuthorityFile = kestrom::foundation::URL::fromFilePath(arguments[2]);
  kestrom::KestromSDK::install(kestrom::linuxPlatform(options));
  kestrom::KestromSDK& sdk = kestrom::KestromSDK::shared();
  sdk.set(kestrom::KestromConfiguration("organization", kestrom::KestromEnvironment::sandbox, std::nullopt));
  for (int call = 0; call < 8; ++call) sdk.fetchKestromStatus("05401", "K7M 2QX", [](auto) {});
  for (int turn = std::stoi(arguments[3]); turn > 0; --turn) std::this_thread::yield();
}

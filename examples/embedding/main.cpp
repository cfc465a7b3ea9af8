// A whole host: configures the kit and, given the two codes of a case, asks the server for its state.
//   host [POSTAL-CODE ACCESS-CODE]

#include <Kestrom/Kestrom.hpp>

#include <cstdio>

int main(int argc, char** argv) {
  std::printf("embedding Kestrom %.1f: %s", KestromVersionNumber, KestromVersionString);

  kestrom::LinuxPlatformOptions options;
  options.mainBundleValues = {{"CFBundleName", "Host"}, {"CFBundleShortVersionString", "1.0"}};
  kestrom::KestromSDK::install(kestrom::linuxPlatform(options));

  kestrom::KestromSDK& sdk = kestrom::KestromSDK::shared();
  sdk.set(kestrom::KestromConfiguration("my-organization", kestrom::KestromEnvironment::sandbox, std::nullopt));
  sdk.observeKestromEvents(
      [](const kestrom::KestromEvent& event) { std::printf("%s\n", std::string(event.name()).c_str()); });
  std::printf("organization %s\n", sdk.configuration().organizationId.c_str());
  if (argc < 3) return 0;

  try {
    const kestrom::KestromStatus status = sdk.fetchKestromStatus(argv[1], argv[2]).get();
    std::printf("status %s, valid until %s\n", status.status.c_str(), status.expiration.c_str());
    return 0;
  } catch (const kestrom::KestromError& error) {
    std::printf("no status: %s\n", error.what());
    return 1;
  }
}

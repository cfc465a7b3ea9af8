#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/KestromConfiguration.hpp"
#include "Kestrom/KestromError.hpp"
#include "Kestrom/KestromEvent.hpp"
#include "Kestrom/KestromStatus.hpp"
#include "Kestrom/Platform/Platform.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Kestrom/Platform/ViewController.hpp"

#include <expected>
#include <functional>
#include <future>
#include <memory>
#include <string>

namespace kestrom {

namespace sdk {
class KestromSDKBuilder;
}

/// The kit, as a host sees it: configure it once at the start, then present flows, ask for the status of a case, watch
/// events. There is one object, which lives until the process ends.
///
/// The main thread is that of `Platform::mainQueue`. On `linuxPlatform()` it is one of the kit's own, unless the host
/// gives a queue: keep the platform that is installed and call through `mainQueue->schedule`. No callback may be empty,
/// and none may throw.
class KESTROM_API KestromSDK final {
 public:
  /// Hands the kit the system that it runs on. Before the first use of `shared`, else the process ends; without it the
  /// kit runs on `linuxPlatform()`. What the record points to lives until the process ends.
  static void install(Platform platform);

  /// The one object, made at the first call. Any thread.
  static KestromSDK& shared();

  KestromSDK(const KestromSDK&) = delete;
  KestromSDK& operator=(const KestromSDK&) = delete;
  ~KestromSDK();

  /// The configuration that was set last; the process ends when none was.
  KestromConfiguration configuration() const;

  /// Sets all of the configuration anew; nothing of it is checked. Requests that are built from now on go to its
  /// environment. To be called before a flow starts, not while one runs. Without a configuration requests go to
  /// production.
  void set(KestromConfiguration configuration);

  /// Lets the kit write to the platform's log from now on; there is no way back. The log holds neither codes nor tokens
  /// nor what the user gave.
  void enableLogs();

  // Presents the flow in full screen over a screen of the host. Main thread only. The flow reads the configuration, so
  // set it before. A flow that was presented earlier is neither dismissed nor told.

  /// The user types the codes.
  void presentKestrom(const std::shared_ptr<screens::ViewController>& host, bool isAnimated);

  /// The codes are there already; with `shouldSkipLoginPage` the flow signs in by itself. Nothing checks them here.
  void presentKestrom(const std::shared_ptr<screens::ViewController>& host, std::string zipCode, std::string accessCode,
                      bool shouldSkipLoginPage, bool isAnimated);

  /// The codes come from a link, "…?kestromZipCode=…&kestromAccessCode=…". A link without both is as none.
  void presentKestrom(const std::shared_ptr<screens::ViewController>& host, const foundation::URL& deepLinkURL,
                      bool shouldSkipLoginPage, bool isAnimated);

  /// Asks the server for the state of a case; no configuration is needed. One attempt: the future throws the
  /// `KestromError` of a failure. Any thread, but whoever waits for the future on the main thread waits for ever.
  std::future<KestromStatus> fetchKestromStatus(std::string zipCode, std::string accessCode);

  /// The same, with a callback. It is called exactly once, on a background queue of the kit, never on the main thread,
  /// and must not block there.
  void fetchKestromStatus(std::string zipCode, std::string accessCode,
                          std::function<void(std::expected<KestromStatus, KestromError>)> completion);

  /// Calls `callback` on the main thread for each event of all flows from now on. There is one observer: a later call
  /// takes the place of an earlier one. Not from two threads at once.
  void observeKestromEvents(std::function<void(const KestromEvent&)> callback);

 private:
  friend class sdk::KestromSDKBuilder;
  struct Parts;

  explicit KestromSDK(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> _parts;
};

}  // namespace kestrom

#include "Kestrom/KestromSDK.hpp"

#include "Core/SDK/DefaultDIContainer.hpp"
#include "Core/SDK/KestromDeepLinkCredentials.hpp"
#include "Core/SDK/KestromSDKBuilder.hpp"
#include "Core/SDK/Logging.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/SDK/StatusCheckTask.hpp"
#include "Kestrom/Platform/LinuxPlatform.hpp"
#include "Platform/Foundation/FatalError.hpp"

#include <mutex>
#include <optional>
#include <utility>

namespace kestrom {

using screens::NavigationController;
using screens::ViewController;
using session::KestromDeepLinkCredentials;
using ui::NavigationControllerCoordinator;
using ui::NavigationCoordinator;
using ui::ViewPresentationType;

struct KestromSDK::Parts {
  Platform platform;
  std::shared_ptr<const ui::DIContainer> diContainer;
  sdk::KestromSDKBuilder::MakeCoordinator makeCoordinator;
  /// Runs what a host asks for without waiting.
  std::shared_ptr<reactive::Scheduler> tasks;
  /// There exactly while a flow is shown. In a cell of its own, which a flow's end looks for after this object.
  std::shared_ptr<std::shared_ptr<NavigationCoordinator>> currentCoordinator =
      std::make_shared<std::shared_ptr<NavigationCoordinator>>();
  reactive::AnyCancellable eventsCancellable;

  std::shared_ptr<NavigationController> makeFlow(std::optional<KestromDeepLinkCredentials> credentials,
                                                 ViewPresentationType presentationType);
};

namespace {

/// What waits for the first use of the shared object.
struct Installation {
  std::mutex mutex;
  std::optional<Platform> platform;
  bool isUsed = false;
};

Installation& installation() {
  static auto* const kInstallation = new Installation;
  return *kInstallation;
}

Platform takeInstalledPlatform() {
  Installation& installed = installation();
  const std::lock_guard lock(installed.mutex);
  installed.isUsed = true;
  return std::exchange(installed.platform, std::nullopt).value_or(Platform{});
}

template <class Entry>
void fill(Entry& entry, Entry& standard) {
  if (!entry) entry = std::move(standard);
}

bool isWhole(const Platform& platform) {
  return platform.mainQueue && platform.makeSerialQueue && platform.clock && platform.urlSessionFactory &&
         platform.fileManager && platform.notificationCenter && platform.mainBundle && platform.sdkBundle &&
         platform.deviceIdentity && platform.locationManager && platform.userNotificationCenter && platform.logSink;
}

/// The host's entries, and the standard ones where it has none.
Platform wholePlatform(Platform platform) {
  if (isWhole(platform)) return platform;
  LinuxPlatformOptions options;
  options.mainQueue = platform.mainQueue;
  Platform standard = linuxPlatform(options);
  fill(platform.mainQueue, standard.mainQueue);
  fill(platform.makeSerialQueue, standard.makeSerialQueue);
  fill(platform.clock, standard.clock);
  fill(platform.urlSessionFactory, standard.urlSessionFactory);
  fill(platform.fileManager, standard.fileManager);
  fill(platform.notificationCenter, standard.notificationCenter);
  fill(platform.mainBundle, standard.mainBundle);
  fill(platform.sdkBundle, standard.sdkBundle);
  fill(platform.deviceIdentity, standard.deviceIdentity);
  fill(platform.locationManager, standard.locationManager);
  fill(platform.userNotificationCenter, standard.userNotificationCenter);
  fill(platform.logSink, standard.logSink);
  return platform;
}

}  // namespace

std::shared_ptr<NavigationController> KestromSDK::Parts::makeFlow(std::optional<KestromDeepLinkCredentials> credentials,
                                                                  ViewPresentationType presentationType) {
  const std::weak_ptr weakCoordinator = currentCoordinator;
  auto flowCompletion = [weakCoordinator, container = diContainer] {
    const auto current = weakCoordinator.lock();
    if (!current) return;
    // The coordinator holds this very callback, so it stays until the end of it.
    const auto ended = std::exchange(*current, nullptr);
    container->makePostKestromEventUseCase()->execute({usecases::InternalEventTrigger::SDKClosed{}});
  };
  auto rootController = std::make_shared<NavigationController>();
  auto coordinator = makeCoordinator({
      .rootController = rootController,
      .diContainer = diContainer,
      .flowCompletion = std::move(flowCompletion),
      .presentationType = presentationType,
  });
  rootController->modalPresentationStyle = screens::ModalPresentationStyle::fullScreen;
  rootController->modalTransitionStyle = screens::ModalTransitionStyle::coverVertical;
  coordinator->navigate(ui::NavigationTransition::splash(std::move(credentials)));
  *currentCoordinator = std::move(coordinator);
  return rootController;
}

KestromSDK::KestromSDK(std::unique_ptr<Parts> parts) : _parts(std::move(parts)) {
  session::setLogSink(_parts->platform.logSink);
  _parts->tasks = _parts->platform.makeSerialQueue("kestrom-tasks");
}

KestromSDK::~KestromSDK() = default;

void KestromSDK::install(Platform platform) {
  Installation& installed = installation();
  const std::lock_guard lock(installed.mutex);
  if (installed.isUsed) foundation::fatalError("KestromSDK::install comes after the first use of KestromSDK::shared");
  installed.platform = std::move(platform);
}

KestromSDK& KestromSDK::shared() {
  // Never destroyed, since its threads and the host's callbacks may outlive whatever ends the process.
  static KestromSDK* const kShared = [] {
    auto sdk = sdk::KestromSDKBuilder::make(takeInstalledPlatform());
    foundation::setFatalErrorSink(*sdk->_parts->platform.logSink);
    return sdk.release();
  }();
  return *kShared;
}

KestromConfiguration KestromSDK::configuration() const {
  return _parts->diContainer->store().configuration();
}

void KestromSDK::set(KestromConfiguration configuration) {
  session::setCurrentEnvironment(configuration.environment);
  session::setCustomFontFamilyName(configuration.fontFamilyName);
  _parts->diContainer->store().setConfiguration(std::move(configuration));
}

void KestromSDK::enableLogs() {
  session::setLoggingEnabled(true);
}

void KestromSDK::presentKestrom(const std::shared_ptr<ViewController>& host, bool isAnimated) {
  host->present(_parts->makeFlow(std::nullopt, ViewPresentationType::pushed), isAnimated, nullptr);
}

void KestromSDK::presentKestrom(const std::shared_ptr<ViewController>& host, std::string zipCode,
                                std::string accessCode, bool shouldSkipLoginPage, bool isAnimated) {
  KestromDeepLinkCredentials credentials{std::move(accessCode), std::move(zipCode), shouldSkipLoginPage};
  host->present(_parts->makeFlow(std::move(credentials), ViewPresentationType::pushed), isAnimated, nullptr);
}

void KestromSDK::presentKestrom(const std::shared_ptr<ViewController>& host, const foundation::URL& deepLinkURL,
                                bool shouldSkipLoginPage, bool isAnimated) {
  auto credentials = KestromDeepLinkCredentials::parse(deepLinkURL, shouldSkipLoginPage);
  host->present(_parts->makeFlow(std::move(credentials), ViewPresentationType::pushed), isAnimated, nullptr);
}

std::future<KestromStatus> KestromSDK::fetchKestromStatus(std::string zipCode, std::string accessCode) {
  std::promise<KestromStatus> promise;
  std::future<KestromStatus> future = promise.get_future();
  _parts->tasks->schedule([container = _parts->diContainer, zipCode = std::move(zipCode),
                           accessCode = std::move(accessCode), promise = std::move(promise)]() mutable {
    sdk::StatusCheckTask::start(*container->makeStatusCheckUseCase(), zipCode, accessCode,
                                [promise = std::move(promise)](sdk::StatusCheckTask::Result result) mutable {
                                  if (result) {
                                    promise.set_value(std::move(*result));
                                  } else {
                                    promise.set_exception(std::make_exception_ptr(std::move(result.error())));
                                  }
                                });
  });
  return future;
}

void KestromSDK::fetchKestromStatus(std::string zipCode, std::string accessCode,
                                    std::function<void(std::expected<KestromStatus, KestromError>)> completion) {
  _parts->tasks->schedule([container = _parts->diContainer, tasks = std::weak_ptr(_parts->tasks),
                           zipCode = std::move(zipCode), accessCode = std::move(accessCode),
                           completion = std::move(completion)]() mutable {
    sdk::StatusCheckTask::start(*container->makeStatusCheckUseCase(), zipCode, accessCode,
                                [tasks, completion = std::move(completion)](sdk::StatusCheckTask::Result result) {
                                  const auto queue = tasks.lock();
                                  if (!queue) return;
                                  queue->schedule([completion, result = std::move(result)] { completion(result); });
                                });
  });
}

void KestromSDK::observeKestromEvents(std::function<void(const KestromEvent&)> callback) {
  _parts->eventsCancellable = _parts->diContainer->eventFeedService().eventPublisher().sink(
      [callback = std::move(callback)](KestromEvent&& event) { callback(event); });
}

namespace sdk {

std::unique_ptr<KestromSDK> KestromSDKBuilder::make(Platform platform) {
  auto parts = std::make_unique<KestromSDK::Parts>();
  parts->platform = wholePlatform(std::move(platform));
  parts->diContainer = std::make_shared<DefaultDIContainer>(parts->platform);
  parts->makeCoordinator = [](NavigationControllerCoordinator::Parts flow) {
    return std::make_shared<NavigationControllerCoordinator>(std::move(flow));
  };
  return std::unique_ptr<KestromSDK>(new KestromSDK(std::move(parts)));
}

std::unique_ptr<KestromSDK> KestromSDKBuilder::make(Platform platform, std::shared_ptr<const ui::DIContainer> container,
                                                    MakeCoordinator makeCoordinator) {
  auto parts = std::make_unique<KestromSDK::Parts>();
  parts->platform = std::move(platform);
  parts->diContainer = std::move(container);
  parts->makeCoordinator = std::move(makeCoordinator);
  return std::unique_ptr<KestromSDK>(new KestromSDK(std::move(parts)));
}

std::shared_ptr<NavigationCoordinator> KestromSDKBuilder::currentCoordinator(const KestromSDK& sdk) {
  return *sdk._parts->currentCoordinator;
}

}  // namespace sdk

}  // namespace kestrom

#include "Core/SDK/DefaultDIContainer.hpp"

#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/DefaultKestromObjectService.hpp"
#include "Core/Services/Device/DefaultDeviceDataService.hpp"
#include "Core/Services/Device/DefaultLocationService.hpp"
#include "Core/Services/Events/DefaultEventFeedService.hpp"
#include "Core/Services/Events/DefaultUserSessionTracker.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"
#include "Core/UseCases/DefaultPostKestromEventUseCase.hpp"
#include "Core/UseCases/DefaultStatusCheckUseCase.hpp"

namespace kestrom::sdk {

DefaultDIContainer::DefaultDIContainer(const Platform& platform)
    : _platform(platform),
      _longLivingCancellables(std::make_shared<usecases::LongLivingCancellables>()),
      _store(std::make_shared<session::SDKStore>()),
      _eventFeedService(std::make_shared<services::DefaultEventFeedService>()),
      _locationService(services::DefaultLocationService::make(*platform.locationManager)),
      _userSessionTracker(std::make_shared<services::DefaultUserSessionTracker>(
          _eventFeedService, *platform.notificationCenter, *platform.clock)),
      _session(platform.urlSessionFactory->makeSession(nullptr)) {}

std::shared_ptr<const services::RESTService> DefaultDIContainer::makeRESTService() const {
  return std::make_shared<services::RESTNetworkService>(services::RESTNetworkService::Parts{
      .session = _session,
      .requestModifiers = {std::make_shared<services::StandardRequestInserter>(_platform.sdkBundle),
                           std::make_shared<services::AuthenticatedRequestInserter>(_store)},
      .errorHandlers = {std::make_shared<services::GenericErrorHandler>()},
      .multipartFileWriter = nullptr,
      .mainQueue = *_platform.mainQueue,
      .clock = *_platform.clock,
  });
}

std::unique_ptr<usecases::StatusCheckUseCase> DefaultDIContainer::makeStatusCheckUseCase() const {
  return std::make_unique<usecases::DefaultStatusCheckUseCase>(
      std::make_shared<services::DefaultKestromObjectService>(makeRESTService(), nullptr, services::defaultDecoder()));
}

std::unique_ptr<usecases::PostKestromEventUseCase> DefaultDIContainer::makePostKestromEventUseCase() const {
  return std::make_unique<usecases::DefaultPostKestromEventUseCase>(usecases::DefaultPostKestromEventUseCase::Parts{
      .feedService = _eventFeedService,
      .userSessionTracker = _userSessionTracker,
      .deviceDataService =
          std::make_shared<services::DefaultDeviceDataService>(*_platform.deviceIdentity, *_platform.mainBundle),
      .locationService = _locationService,
      .longLivingCancellables = _longLivingCancellables,
      .mainQueue = *_platform.mainQueue,
      .clock = *_platform.clock,
  });
}

}  // namespace kestrom::sdk

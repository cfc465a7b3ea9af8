#include "Core/SDK/DefaultDIContainer.hpp"

#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/Bot/DefaultAnswerService.hpp"
#include "Core/Services/Bot/DefaultBotEngine.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Core/Services/Cache/DefaultJSONCache.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Core/Services/DefaultAuthenticationService.hpp"
#include "Core/Services/DefaultKestromObjectService.hpp"
#include "Core/Services/DefaultUserService.hpp"
#include "Core/Services/Device/DefaultDeviceDataService.hpp"
#include "Core/Services/Device/DefaultLocationService.hpp"
#include "Core/Services/Events/DefaultEventFeedService.hpp"
#include "Core/Services/Events/DefaultUserSessionTracker.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Core/Services/Networking/REST/StandardRequestInserter.hpp"
#include "Core/UseCases/DefaultLoginUseCase.hpp"
#include "Core/UseCases/DefaultPostKestromEventUseCase.hpp"
#include "Core/UseCases/DefaultSetEventUserUseCase.hpp"
#include "Core/UseCases/DefaultStatusCheckUseCase.hpp"
#include "Core/UseCases/DefaultUpdateUserProfileUseCase.hpp"

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

std::shared_ptr<services::AnswerService> DefaultDIContainer::makeAnswerService() const {
  const foundation::URL documentsDirectory = _platform.fileManager->documentsDirectory();
  return std::make_shared<services::DefaultAnswerService>(services::DefaultAnswerService::Parts{
      .restService = makeRESTService(),
      .cache = std::make_shared<services::DefaultJSONCache>(
          std::make_shared<services::SystemFileManager>(_platform.fileManager),
          foundation::DecodingOptions{.documentsDirectory = documentsDirectory},
          foundation::DateStrategy::secondsSinceReferenceDate),
      .underWay = _answersUnderWay,
      .documentsDirectory = documentsDirectory,
  });
}

std::unique_ptr<usecases::SetEventUserUseCase> DefaultDIContainer::makeSetEventUserUseCase() const {
  return std::make_unique<usecases::DefaultSetEventUserUseCase>(_eventFeedService);
}

std::unique_ptr<usecases::StatusCheckUseCase> DefaultDIContainer::makeStatusCheckUseCase() const {
  return std::make_unique<usecases::DefaultStatusCheckUseCase>(makeKestromObjectService());
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

std::unique_ptr<services::KestromObjectService> DefaultDIContainer::makeKestromObjectService() const {
  return std::make_unique<services::DefaultKestromObjectService>(makeRESTService(), makeAnswerService(),
                                                                 services::defaultDecoder());
}

std::unique_ptr<usecases::LoginUseCase> DefaultDIContainer::makeLoginUseCase() const {
  return std::make_unique<usecases::DefaultLoginUseCase>(usecases::DefaultLoginUseCase::Parts{
      .authService = std::make_shared<services::DefaultAuthenticationService>(makeRESTService()),
      .kestromService = makeKestromObjectService(),
      .store = _store,
      .updateUserProfileUseCase = std::make_shared<usecases::DefaultUpdateUserProfileUseCase>(
          std::make_shared<services::DefaultUserService>(makeRESTService())),
      .setEventUserUseCase = makeSetEventUserUseCase(),
      .postKestromEventUseCase = makePostKestromEventUseCase(),
  });
}

std::unique_ptr<services::BotEngine> DefaultDIContainer::makeBotEngine(
    const models::KestromObjectDetails& kestromObject) const {
  return std::make_unique<services::DefaultBotEngine>(services::DefaultBotEngine::Parts{
      .kestromObject = kestromObject,
      .chatbot = std::make_shared<services::NativeBotEngine>([&clock = *_platform.clock] { return clock.now(); }),
      .answerService = makeAnswerService(),
      .handlebarParser = services::HandleBarParser(kestromObject.rawJSON),
      .imageCodec = std::make_shared<imaging::NoImageCodec>(),
      .documentsDirectory = _platform.fileManager->documentsDirectory(),
      .clock = *_platform.clock,
  });
}

}  // namespace kestrom::sdk

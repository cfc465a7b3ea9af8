#pragma once

#include "Core/Services/Bot/AnswerService.hpp"
#include "Core/Services/Bot/AnswersUnderWay.hpp"
#include "Core/Services/Bot/BotEngine.hpp"
#include "Core/Services/Device/LocationService.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"
#include "Core/UseCases/LongLivingCancellables.hpp"
#include "Kestrom/Platform/Platform.hpp"
#include "UI/Navigation/DIContainer.hpp"

#include <memory>

namespace kestrom::sdk {

/// The one place that knows the classes. `platform` has no empty entry and outlives the container and all that it made.
class DefaultDIContainer final : public ui::DIContainer {
 public:
  explicit DefaultDIContainer(const Platform& platform);

  session::SessionStore& store() const override { return *_store; }
  services::EventFeedService& eventFeedService() const override { return *_eventFeedService; }
  services::UserSessionTracker& userSessionTracker() const override { return *_userSessionTracker; }

  std::unique_ptr<usecases::SetEventUserUseCase> makeSetEventUserUseCase() const override;
  std::unique_ptr<usecases::StatusCheckUseCase> makeStatusCheckUseCase() const override;
  std::unique_ptr<usecases::PostKestromEventUseCase> makePostKestromEventUseCase() const override;
  std::unique_ptr<services::KestromObjectService> makeKestromObjectService() const override;
  std::unique_ptr<usecases::LoginUseCase> makeLoginUseCase() const override;

  /// The conversation of a case, for the use cases of one chat to share.
  std::unique_ptr<services::BotEngine> makeBotEngine(const models::KestromObjectDetails& kestromObject) const;

  std::shared_ptr<services::AnswerService> makeAnswerService() const;
  /// What the answer services of all screens have under way.
  const services::AnswersUnderWay& answersUnderWay() const { return *_answersUnderWay; }

 private:
  std::shared_ptr<const services::RESTService> makeRESTService() const;

  const Platform& _platform;
  std::shared_ptr<usecases::LongLivingCancellables> _longLivingCancellables;
  std::shared_ptr<session::SessionStore> _store;
  std::shared_ptr<services::AnswersUnderWay> _answersUnderWay = std::make_shared<services::AnswersUnderWay>();
  std::shared_ptr<services::EventFeedService> _eventFeedService;
  std::shared_ptr<services::LocationService> _locationService;
  std::shared_ptr<services::UserSessionTracker> _userSessionTracker;
  /// All services send through one session, so that they share connections.
  std::shared_ptr<networking::URLSession> _session;
};

}  // namespace kestrom::sdk

#include "Core/UseCases/DefaultPostKestromEventUseCase.hpp"

#include "Platform/Reactive/Sources.hpp"

#include <chrono>
#include <utility>

namespace kestrom::usecases {

namespace {

constexpr std::chrono::seconds kLocationTimeout{10};

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};

}  // namespace

DefaultPostKestromEventUseCase::DefaultPostKestromEventUseCase(Parts parts) : _parts(std::move(parts)) {}

void DefaultPostKestromEventUseCase::execute(InternalEventTrigger trigger) {
  const double activeTime = _parts.userSessionTracker->activeTime();
  _parts.longLivingCancellables->cancellables.store(
      complete(std::move(trigger), activeTime)
          .sink([feed = _parts.feedService, &clock = _parts.clock](KestromEvent::Trigger&& completed) {
            feed->send({.timestamp = clock.now(), .trigger = std::move(completed), .user = feed->user()});
          }));
}

DefaultPostKestromEventUseCase::TriggerPublisher DefaultPostKestromEventUseCase::complete(InternalEventTrigger trigger,
                                                                                          double activeTime) const {
  using Internal = InternalEventTrigger;
  using Trigger = KestromEvent::Trigger;
  using Coordinate = std::optional<KestromCoordinate>;
  return std::visit(
      Overloaded{
          [&](Internal::UserLoggedIn& login) -> TriggerPublisher {
            return coordinate().map([login = std::move(login),
                                     data = _parts.deviceDataService->deviceData()](Coordinate location) -> Trigger {
              return {Trigger::UserLoggedIn{login.status, data, location, login.isDeeplink}};
            });
          },
          [&](Internal::QuestionAsked& asked) {
            return reactive::just(Trigger{Trigger::QuestionAsked{activeTime, std::move(asked.message)}});
          },
          [&](Internal::QuestionAnswered& answered) -> TriggerPublisher {
            return coordinate().map(
                [activeTime, message = std::move(answered.message)](Coordinate location) -> Trigger {
                  return {Trigger::QuestionAnswered{activeTime, location, message}};
                });
          },
          [&](Internal::SDKClosed&) { return reactive::just(Trigger{Trigger::SDKClosed{activeTime}}); },
          [&](Internal::KestromCompleted&) { return reactive::just(Trigger{Trigger::KestromCompleted{activeTime}}); },
      },
      trigger.form);
}

DefaultPostKestromEventUseCase::CoordinatePublisher DefaultPostKestromEventUseCase::coordinate() const {
  return _parts.locationService->location()
      .map([](const services::LocationService::Reading& reading) {
        return std::optional<KestromCoordinate>({reading.location.latitude, reading.location.longitude});
      })
      .timeout(kLocationTimeout, _parts.mainQueue, device::LocationError())
      .replaceError(std::nullopt);
}

}  // namespace kestrom::usecases

#pragma once

#include "Core/Services/Device/DeviceDataService.hpp"
#include "Core/Services/Device/LocationService.hpp"
#include "Core/Services/Events/EventFeedService.hpp"
#include "Core/Services/Events/UserSessionTracker.hpp"
#include "Core/UseCases/LongLivingCancellables.hpp"
#include "Core/UseCases/PostKestromEventUseCase.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/Scheduler.hpp"

#include <memory>
#include <optional>

namespace kestrom::usecases {

class DefaultPostKestromEventUseCase final : public PostKestromEventUseCase {
 public:
  struct Parts {
    std::shared_ptr<services::EventFeedService> feedService;
    std::shared_ptr<services::UserSessionTracker> userSessionTracker;
    std::shared_ptr<services::DeviceDataService> deviceDataService;
    std::shared_ptr<services::LocationService> locationService;
    std::shared_ptr<LongLivingCancellables> longLivingCancellables;
    /// They outlive what waits in `longLivingCancellables`.
    reactive::Scheduler& mainQueue;
    const foundation::Clock& clock;
  };

  explicit DefaultPostKestromEventUseCase(Parts parts);

  void execute(InternalEventTrigger trigger) override;

 private:
  using TriggerPublisher = reactive::Publisher<KestromEvent::Trigger, reactive::Never>;
  using CoordinatePublisher = reactive::Publisher<std::optional<KestromCoordinate>, reactive::Never>;

  TriggerPublisher complete(InternalEventTrigger trigger, double activeTime) const;
  CoordinatePublisher coordinate() const;

  Parts _parts;
};

}  // namespace kestrom::usecases

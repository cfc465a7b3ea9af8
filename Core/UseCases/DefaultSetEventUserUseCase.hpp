#pragma once

#include "Core/Services/Events/EventFeedService.hpp"
#include "Core/UseCases/SetEventUserUseCase.hpp"

#include <memory>
#include <utility>

namespace kestrom::usecases {

class DefaultSetEventUserUseCase final : public SetEventUserUseCase {
 public:
  explicit DefaultSetEventUserUseCase(std::shared_ptr<services::EventFeedService> feedService)
      : _feedService(std::move(feedService)) {}

  void execute(const models::KestromObjectDetails& details) override { _feedService->setUser(details.analyticUser); }

 private:
  std::shared_ptr<services::EventFeedService> _feedService;
};

}  // namespace kestrom::usecases

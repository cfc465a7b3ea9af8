#pragma once

#include "Core/SDK/SessionStore.hpp"
#include "Core/Services/Events/EventFeedService.hpp"
#include "Core/Services/Events/UserSessionTracker.hpp"
#include "Core/Services/KestromObjectService.hpp"
#include "Core/UseCases/LoginUseCase.hpp"
#include "Core/UseCases/PostKestromEventUseCase.hpp"
#include "Core/UseCases/SetEventUserUseCase.hpp"
#include "Core/UseCases/StatusCheckUseCase.hpp"

#include <memory>

namespace kestrom::ui {

/// Where screens and the public object get what they need. It keeps the few objects that live as long as the process;
/// each `make…` gives a new one. Making is safe from any thread.
class DIContainer {
 public:
  virtual ~DIContainer() = default;

  virtual session::SessionStore& store() const = 0;
  virtual services::EventFeedService& eventFeedService() const = 0;
  virtual services::UserSessionTracker& userSessionTracker() const = 0;

  virtual std::unique_ptr<usecases::SetEventUserUseCase> makeSetEventUserUseCase() const = 0;
  virtual std::unique_ptr<usecases::StatusCheckUseCase> makeStatusCheckUseCase() const = 0;
  virtual std::unique_ptr<usecases::PostKestromEventUseCase> makePostKestromEventUseCase() const = 0;
  virtual std::unique_ptr<services::KestromObjectService> makeKestromObjectService() const = 0;
  virtual std::unique_ptr<usecases::LoginUseCase> makeLoginUseCase() const = 0;
};

}  // namespace kestrom::ui

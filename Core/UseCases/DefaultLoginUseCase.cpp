#include "Core/UseCases/DefaultLoginUseCase.hpp"

#include "Core/UseCases/LoginError.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <expected>
#include <string>

namespace kestrom::usecases {

using models::KestromObjectDetails;
using models::MobileLoginResponseBody;
using reactive::Nothing;
using reactive::Publisher;
using services::RESTError;
using session::KestromInfo;
using session::KestromUser;
using session::SessionStore;

namespace {

std::expected<KestromInfo, RESTError> openedCase(const SessionStore& store) {
  auto info = store.user().currentKestromInfo;
  if (!info) return std::unexpected(RESTError::customError(LoginError::missingKestromId));
  return std::move(*info);
}

/// The same case once the profile's call is over, however it ended.
Publisher<KestromObjectDetails, reactive::Never> saveProfile(const UpdateUserProfileUseCase& update,
                                                             const KestromObjectDetails& details) {
  return update.execute(details.organizationId, details.id).replaceError(Nothing{}).map([details](Nothing) {
    return details;
  });
}

}  // namespace

Publisher<KestromObjectDetails, RESTError> DefaultLoginUseCase::execute(Request request) {
  const auto takeToken = [store = _parts.store](const MobileLoginResponseBody& response) {
    store->modifyUser([&](KestromUser& user) {
      user.token = response.token;
      user.currentKestromInfo = KestromInfo{response.organizationId, response.kestromId};
    });
  };
  const auto takeAccessCode = [store = _parts.store, accessCode = request.accessCode](const KestromInfo&) {
    store->modifyUser([&](KestromUser& user) { user.accessCode = accessCode; });
  };
  const auto setEventUser = [useCase = _parts.setEventUserUseCase](const KestromObjectDetails& details) {
    useCase->execute(details);
  };
  const auto postLogin = [useCase = _parts.postKestromEventUseCase,
                          isDeeplink = request.isDeeplink](const KestromObjectDetails& details) {
    useCase->execute({InternalEventTrigger::UserLoggedIn{details.analyticUser.status, isDeeplink}});
  };

  return _parts.authService->login({.accessCode = request.accessCode, .zipCode = request.zipCode})
      .handleEvents({.onOutput = takeToken})
      .tryMap([store = _parts.store](MobileLoginResponseBody&&) { return openedCase(*store); })
      .handleEvents({.onOutput = takeAccessCode})
      .flatMap([service = _parts.kestromService](KestromInfo&& info) { return service->get(info.kestromId); })
      .handleEvents({.onOutput = setEventUser})
      .flatMap([useCase = _parts.updateUserProfileUseCase](KestromObjectDetails&& details) {
        return saveProfile(*useCase, details);
      })
      .handleEvents({.onOutput = postLogin});
}

}  // namespace kestrom::usecases

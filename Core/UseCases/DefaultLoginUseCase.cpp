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

void takeToken(SessionStore& store, const MobileLoginResponseBody& response) {
  store.modifyUser([&](KestromUser& user) {
    user.token = response.token;
    user.currentKestromInfo = KestromInfo{response.organizationId, response.kestromId};
  });
}

std::expected<KestromInfo, RESTError> openedCase(const SessionStore& store) {
  auto info = store.user().currentKestromInfo;
  if (!info) return std::unexpected(RESTError::customError(LoginError::missingKestromId));
  return std::move(*info);
}

/// The same case, when the server has heard of it or has failed to.
Publisher<KestromObjectDetails, reactive::Never> saveProfile(const UpdateUserProfileUseCase& update,
                                                             const KestromObjectDetails& details) {
  return update.execute(details.organizationId, details.id).replaceError(Nothing{}).map([details](Nothing) {
    return details;
  });
}

}  // namespace

Publisher<KestromObjectDetails, RESTError> DefaultLoginUseCase::execute(Request request) {
  return _parts->authService->login({.accessCode = request.accessCode, .zipCode = std::move(request.zipCode)})
      .handleEvents({.onOutput = [parts = _parts](
                                     const MobileLoginResponseBody& response) { takeToken(*parts->store, response); }})
      .tryMap([parts = _parts](MobileLoginResponseBody&&) { return openedCase(*parts->store); })
      .handleEvents({.onOutput =
                         [parts = _parts, accessCode = std::move(request.accessCode)](const KestromInfo&) {
                           parts->store->modifyUser([&](KestromUser& user) { user.accessCode = accessCode; });
                         }})
      .flatMap([parts = _parts](KestromInfo&& info) { return parts->kestromService->get(info.kestromId); })
      .handleEvents(
          {.onOutput =
               [parts = _parts](const KestromObjectDetails& details) { parts->setEventUserUseCase->execute(details); }})
      .flatMap([parts = _parts](KestromObjectDetails&& details) {
        return saveProfile(*parts->updateUserProfileUseCase, details);
      })
      .handleEvents(
          {.onOutput = [parts = _parts, isDeeplink = request.isDeeplink](const KestromObjectDetails& details) {
            parts->postKestromEventUseCase->execute(
                {InternalEventTrigger::UserLoggedIn{details.analyticUser.status, isDeeplink}});
          }});
}

}  // namespace kestrom::usecases

#include "Core/SDK/StatusCheckFailure.hpp"

#include <optional>

namespace kestrom::sdk {

namespace {

using services::APIError;
using services::RESTError;

/// The code is the one of the body: the HTTP status says nothing that the server did not mean to say there.
KestromError refused(const std::optional<APIError>& error) {
  if (!error) return KestromError::apiError("", 0);
  return KestromError::apiError(error->message.value_or(""), error->statusCode);
}

}  // namespace

KestromError statusCheckFailure(const RESTError& error) {
  if (const auto* failure = std::get_if<RESTError::Unauthenticated>(&error.form)) return refused(failure->apiError);
  if (const auto* failure = std::get_if<RESTError::WrongStatusResponse>(&error.form)) return refused(failure->apiError);
  if (std::holds_alternative<RESTError::NoInternetConnection>(error.form)) return KestromError::networkError();
  return KestromError::unknown();
}

}  // namespace kestrom::sdk

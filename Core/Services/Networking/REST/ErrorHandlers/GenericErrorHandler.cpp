#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"

#include "Core/SDK/Logging.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <utility>

namespace kestrom::services {

reactive::Publisher<std::any, RESTError> GenericErrorHandler::tryHandle(RESTError error, const RESTRequest&,
                                                                        const JSONDecoder&) const {
  session::logError(debugDescription(error), "tryHandle(error:originalRequest:decoder:)");
  return reactive::fail<std::any>(std::move(error));
}

}  // namespace kestrom::services

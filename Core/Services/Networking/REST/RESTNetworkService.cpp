#include "Core/Services/Networking/REST/RESTNetworkService.hpp"

#include "Core/SDK/Logging.hpp"
#include "Platform/Foundation/FatalError.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <string>

namespace kestrom::services {

namespace {

using foundation::Bytes;
using foundation::URL;
using networking::DataResponse;
using networking::HTTPURLResponse;
using networking::URLError;
using networking::URLRequest;
using networking::URLSession;
using reactive::Completion;
using reactive::Never;
using reactive::Publisher;
using reactive::Ref;
using reactive::Scope;
using Session = RESTService::Session;
using Exchange = Publisher<DataResponse, URLError>;

/// A task as a publisher: it runs as long as the subscription, and its session lives as long, because that ends its
/// tasks when it goes. `findSession` may find none any more.
template <class FindSession, class StartTask>
Exchange taskPublisher(FindSession findSession, StartTask start) {
  using Downstream = reactive::Subscriber<DataResponse, URLError>;
  return reactive::detail::makePublisher<DataResponse, URLError>([findSession = std::move(findSession),
                                                                  start = std::move(start)](Ref<Downstream> downstream,
                                                                                            const Ref<Scope>& scope) {
    const Session session = findSession();
    if (!session) {
      return downstream->finish(Completion<URLError>::failed(URLError{URLError::Code::unknown, "the session is gone"}));
    }
    auto token = start(*session, [downstream, scope](std::expected<DataResponse, URLError> result) {
      if (scope->isCancelled()) return;
      if (!result) return downstream->finish(Completion<URLError>::failed(std::move(result.error())));
      downstream->receive(std::move(*result));
      if (!scope->isCancelled()) downstream->finish(Completion<URLError>::finished());
    });
    scope->add([token = std::move(token), session]() mutable { token.cancel(); });
  });
}

/// To be subscribed to once.
Exchange dataExchange(const Session& session, URLRequest request) {
  struct Start {
    mutable URLRequest request;

    reactive::AnyCancellable operator()(URLSession& session, URLSession::DataCompletion completion) const {
      return session.dataTask(std::move(request), std::move(completion));
    }
  };
  return taskPublisher([session] { return session; }, Start{std::move(request)});
}

/// The file is gone when the exchange has ended, but stays when the caller gave up: it may be read yet.
Exchange uploadExchange(std::weak_ptr<URLSession> session, URLRequest request, URL file,
                        std::shared_ptr<MultipartFileWriter> writer) {
  const auto remove = [writer = std::move(writer), file] { static_cast<void>(writer->remove(file)); };
  return taskPublisher([session = std::move(session)] { return session.lock(); },
                       [request = std::move(request), file](URLSession& alive, URLSession::DataCompletion completion) {
                         return alive.uploadTask(request, file, std::move(completion));
                       })
      .handleEvents({.onOutput = [remove](const DataResponse&) { remove(); },
                     .onCompletion = [remove](const Completion<URLError>&) { remove(); }});
}

RESTError classified(URLError error) {
  switch (error.code) {
    case URLError::Code::userAuthenticationRequired:
      return RESTError::unauthenticated(std::nullopt);
    case URLError::Code::notConnectedToInternet:
    case URLError::Code::networkConnectionLost:
      return RESTError::noInternetConnection();
    default:
      return RESTError::customError(std::move(error));
  }
}

std::optional<APIError> apiErrorOf(const Bytes& body, const JSONDecoder& decoder) {
  auto error = foundation::decodeJSON<APIError>(foundation::textOf(body), decoder);
  return error ? std::optional(std::move(*error)) : std::nullopt;
}

std::expected<Bytes, RESTError> validated(DataResponse&& exchange, const JSONDecoder& decoder) {
  const auto* response = std::get_if<HTTPURLResponse>(&exchange.response);
  if (!response) return std::unexpected(RESTError::unknown());
  const int status = response->statusCode;
  session::logInfo(std::to_string(status) + " " + response->url.absoluteString());
  if (status >= 200 && status <= 299) return std::move(exchange.data);
  // Only a failure is asked for its reason: nobody would see that of a success.
  auto apiError = apiErrorOf(exchange.data, decoder);
  if (status == 401) return std::unexpected(RESTError::unauthenticated(std::move(apiError)));
  return std::unexpected(RESTError::wrongStatusResponse(status, std::move(apiError)));
}

}  // namespace

Publisher<std::any, RESTError> RESTNetworkService::run(SharedRequest request, const JSONDecoder& decoder,
                                                       Session givenSession, ReadBody read) const {
  const std::shared_ptr<const Parts> parts = _parts;
  const auto* upload = dynamic_cast<const UploadRESTRequest*>(request.get());
  const std::weak_ptr<URLSession> uploadSession = givenSession ? givenSession : parts->session;
  // An upload does not keep a session that its caller has given up before it begins.
  const Session session = upload ? nullptr : uploadSession.lock();

  auto requests = reactive::deferred([request, parts]() -> Publisher<URLRequest, Never> {
    return reactive::handedOver(request->urlRequest(parts->clock));
  });
  for (const auto& modifier : parts->requestModifiers) {
    requests = requests.flatMap([modifier](URLRequest&& passing) { return modifier->modified(std::move(passing)); });
  }

  const auto send = [request, parts, session, uploadSession,
                     upload](URLRequest&& ready) -> Publisher<DataResponse, RESTError> {
    session::logInfo("URLRequest: " + ready.url.absoluteString() + " sent");
    if (!upload) return dataExchange(session, std::move(ready)).mapError(&classified);
    if (!parts->multipartFileWriter) foundation::fatalError("An upload needs a multipart file writer");
    auto file = parts->multipartFileWriter->write(*upload);
    if (!file) {
      session::logInfo("Cannot create a multipart data file for upload request");
      return reactive::fail<DataResponse>(RESTError::unknown());
    }
    return uploadExchange(uploadSession, std::move(ready), std::move(*file), parts->multipartFileWriter)
        .mapError(&classified);
  };

  auto values = requests.setFailureType<RESTError>()
                    .flatMap(send)
                    .tryMap([decoder](DataResponse&& exchange) { return validated(std::move(exchange), decoder); })
                    .tryMap([decoder, read](Bytes&& body) { return read(std::move(body), decoder); });
  for (const auto& handler : parts->errorHandlers) {
    values = values.catchError([handler, request, decoder](RESTError&& error) {
      return handler->tryHandle(std::move(error), *request, decoder);
    });
  }
  return values.receiveOn(parts->mainQueue);
}

}  // namespace kestrom::services

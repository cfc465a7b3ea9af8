#pragma once

#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"
#include "Core/Services/Networking/REST/VoidResponse.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/URLSession.hpp"
#include "Platform/Foundation/JSONCoding.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <any>
#include <expected>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace kestrom::services {

/// The one road to the server. Each of the three calls gives a publisher that does nothing until it is subscribed to,
/// runs the whole call anew for each subscription, and gives one value or one failure on the main queue. Subscribe from
/// any thread. Without a session the service's own is used. The publisher may outlive the service.
class RESTService {
 public:
  using Session = std::shared_ptr<networking::URLSession>;

  virtual ~RESTService() = default;

  /// The bytes of the body.
  template <class Request>
  reactive::Publisher<foundation::Bytes, RESTError> data(Request request, const JSONDecoder& decoder,
                                                         Session session = nullptr) const {
    return typed<foundation::Bytes>(run(shared(std::move(request)), decoder, std::move(session), &keptBytes));
  }

  /// The body as a record.
  template <class Response, class Request>
  reactive::Publisher<Response, RESTError> decoded(Request request, const JSONDecoder& decoder,
                                                   Session session = nullptr) const {
    return typed<Response>(run(shared(std::move(request)), decoder, std::move(session), &decodedBytes<Response>));
  }

  /// Only that it went well; nobody reads the body.
  template <class Request>
  reactive::Publisher<reactive::Nothing, RESTError> perform(Request request, const JSONDecoder& decoder,
                                                            Session session = nullptr) const {
    return typed<VoidResponse>(run(shared(std::move(request)), decoder, std::move(session), &noBytes))
        .map([](VoidResponse) { return reactive::Nothing{}; });
  }

 protected:
  using SharedRequest = std::shared_ptr<const RESTRequest>;
  /// Makes the call's value of a body.
  using ReadBody = std::expected<std::any, RESTError> (*)(foundation::Bytes&& body, const JSONDecoder& decoder);

  /// All of a call; `read` stands before the handling of errors, as its failure is one of the call.
  virtual reactive::Publisher<std::any, RESTError> run(SharedRequest request, const JSONDecoder& decoder,
                                                       Session session, ReadBody read) const = 0;

 private:
  template <class Request>
  static SharedRequest shared(Request request) {
    static_assert(std::is_base_of_v<RESTRequest, Request>);
    return std::make_shared<const Request>(std::move(request));
  }

  /// A handler that recovers with a value of another type has recovered nothing.
  template <class Value>
  static reactive::Publisher<Value, RESTError> typed(const reactive::Publisher<std::any, RESTError>& values) {
    return values.tryMap([](std::any&& any) -> std::expected<Value, RESTError> {
      auto* value = std::any_cast<Value>(&any);
      if (!value) return std::unexpected(RESTError::unknown());
      return std::move(*value);
    });
  }

  static std::expected<std::any, RESTError> keptBytes(foundation::Bytes&& body, const JSONDecoder&) {
    return std::any(std::move(body));
  }
  static std::expected<std::any, RESTError> noBytes(foundation::Bytes&&, const JSONDecoder&) {
    return std::any(VoidResponse{});
  }
  template <class Response>
  static std::expected<std::any, RESTError> decodedBytes(foundation::Bytes&& body, const JSONDecoder& decoder) {
    auto response = foundation::decodeJSON<Response>(foundation::textOf(body), decoder);
    if (!response) return std::unexpected(RESTError::decoding(std::move(response.error())));
    return std::any(std::move(*response));
  }
};

}  // namespace kestrom::services

#pragma once

#include "Core/Services/Bot/AnswerService.hpp"
#include "Core/Services/KestromObjectService.hpp"
#include "Core/Services/Networking/REST/JSONDecoders.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Asks the server.
class DefaultKestromObjectService final : public KestromObjectService {
 public:
  /// `kestromObjectDecoder` reads the case.
  DefaultKestromObjectService(std::shared_ptr<const RESTService> restService,
                              std::shared_ptr<AnswerService> answerService, JSONDecoder kestromObjectDecoder)
      : _restService(std::move(restService)),
        _answerService(std::move(answerService)),
        _kestromObjectDecoder(std::move(kestromObjectDecoder)) {}

  reactive::Publisher<models::KestromObjectDetails, RESTError> get(const std::string& kestromId) const override;
  reactive::Publisher<models::StatusCheckResponseBody, RESTError> statusCheck(
      const std::string& zipCode, const std::string& accessCode) const override;
  reactive::Publisher<reactive::Nothing, RESTError> submit(const std::string& kestromID) const override;

 private:
  std::shared_ptr<const RESTService> _restService;
  std::shared_ptr<AnswerService> _answerService;
  JSONDecoder _kestromObjectDecoder;
};

}  // namespace kestrom::services

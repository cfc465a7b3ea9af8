#include "Core/Services/DefaultKestromObjectService.hpp"

#include "Core/Models/BotTemplateCoding.hpp"
#include "Core/Models/KestromObjectDetailsDTO.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"

#include <expected>
#include <string_view>

namespace kestrom::services {

using foundation::Bytes;
using foundation::JSONDocument;
using models::BotTemplate;
using models::KestromObjectDetails;
using models::KestromObjectDetailsDTO;
using reactive::Publisher;

namespace {

constexpr std::string_view kInvited = "invited";

/// A case without its template: what is known of it, and all of it.
struct LoadedCase {
  KestromObjectDetailsDTO known;
  std::shared_ptr<const JSONDocument> json;
};

std::expected<LoadedCase, RESTError> readCase(const Bytes& body, const JSONDecoder& decoder) {
  auto document = JSONDocument::parse(foundation::textOf(body));
  if (!document) return std::unexpected(RESTError::customError(std::move(document.error())));
  if (!document->root().isObject()) return std::unexpected(RESTError::customError(RESTError::parsingFailed()));
  auto known = foundation::decodeDocument<KestromObjectDetailsDTO>(*document, decoder);
  if (!known) return std::unexpected(RESTError::decoding(std::move(known.error().front())));
  return LoadedCase{std::move(*known), std::make_shared<const JSONDocument>(std::move(*document))};
}

KestromAnalyticUser analyticUser(const KestromObjectDetailsDTO& known) {
  return {
      .kestromID = known.id,
      .name = known.customer.firstName + " " + known.customer.lastName,
      .email = known.customer.email,
      .botId = known.bot.id,
      .botName = known.bot.name,
      .organizationId = known.organizationId,
      .status = known.status,
      .isStaging = session::currentEnvironment() == KestromEnvironment::staging,
  };
}

KestromObjectDetails details(const LoadedCase& loaded, BotTemplate bot) {
  const KestromObjectDetailsDTO& known = loaded.known;
  return {
      .id = known.id,
      .customer = known.customer,
      .property = known.property,
      .accessCode = known.accessCode,
      .organizationId = known.organizationId,
      .status = known.status,
      .bot = std::make_shared<const BotTemplate>(std::move(bot)),
      .analyticUser = analyticUser(known),
      .rawJSON = loaded.json,
  };
}

}  // namespace

Publisher<KestromObjectDetails, RESTError> DefaultKestromObjectService::get(const std::string& kestromId) const {
  return _restService->data(KestromObjectRESTRequest::kestromObject(kestromId), defaultDecoder())
      .mapError([](RESTError&& error) { return RESTError::customError(std::move(error)); })
      .tryMap([decoder = _kestromObjectDecoder](Bytes&& body) { return readCase(body, decoder); })
      .flatMap([restService = _restService](LoadedCase&& loaded) {
        auto request = KestromObjectRESTRequest::getBot(loaded.known.bot.id);
        return restService->decoded<BotTemplate>(std::move(request), defaultDecoder())
            .map([loaded = std::move(loaded)](BotTemplate&& bot) { return details(loaded, std::move(bot)); });
      })
      .handleEvents({.onOutput = [answerService = _answerService](const KestromObjectDetails& loaded) {
        if (loaded.status == kInvited) answerService->clearCachedAnswers(loaded);
      }});
}

Publisher<models::StatusCheckResponseBody, RESTError> DefaultKestromObjectService::statusCheck(
    const std::string& zipCode, const std::string& accessCode) const {
  return _restService->decoded<models::StatusCheckResponseBody>(
      KestromObjectRESTRequest::statusCheck(zipCode, accessCode), defaultDecoder());
}

Publisher<reactive::Nothing, RESTError> DefaultKestromObjectService::submit(const std::string& kestromID) const {
  return _restService->perform(KestromObjectRESTRequest::submit(kestromID), defaultDecoder());
}

}  // namespace kestrom::services

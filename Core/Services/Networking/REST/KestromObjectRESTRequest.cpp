#include "Core/Services/Networking/REST/KestromObjectRESTRequest.hpp"

namespace kestrom::services {

std::string KestromObjectRESTRequest::path() const {
  if (const auto* object = std::get_if<KestromObject>(&_form)) return "/kestroms/" + object->kestromId;
  if (const auto* submitted = std::get_if<Submit>(&_form)) return "/kestroms/" + submitted->kestromID + "/submit";
  if (const auto* bot = std::get_if<GetBot>(&_form)) return "/bots/" + bot->id + "/sequence";
  return "/kestroms/status-check";
}

RESTMethod KestromObjectRESTRequest::method() const {
  const bool isRead = std::holds_alternative<KestromObject>(_form) || std::holds_alternative<GetBot>(_form);
  return isRead ? RESTMethod::get : RESTMethod::post;
}

std::optional<foundation::Bytes> KestromObjectRESTRequest::body(const foundation::Clock&) const {
  if (const auto* check = std::get_if<StatusCheck>(&_form)) {
    return encodedTexts({{"zipCode", check->zipCode}, {"accessCode", check->accessCode}});
  }
  if (std::holds_alternative<Submit>(_form)) return encodedTexts({{"status", "ready_for_review"}});
  return std::nullopt;
}

}  // namespace kestrom::services

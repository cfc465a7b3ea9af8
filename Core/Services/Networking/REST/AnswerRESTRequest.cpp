#include "Core/Services/Networking/REST/AnswerRESTRequest.hpp"

#include "Core/Models/BotAPIAnswerCoding.hpp"

namespace kestrom::services {

std::string AnswerRESTRequest::path() const {
  const std::string& kestromID =
      std::visit([](const auto& form) -> const std::string& { return form.kestromID; }, _form);
  return "/kestroms/" + kestromID + "/answers";
}

RESTMethod AnswerRESTRequest::method() const {
  return std::holds_alternative<Submit>(_form) ? RESTMethod::post : RESTMethod::get;
}

std::optional<foundation::Bytes> AnswerRESTRequest::body(const foundation::Clock&) const {
  const auto* submitted = std::get_if<Submit>(&_form);
  if (!submitted) return std::nullopt;
  return encoded(submitted->answer, foundation::DateStrategy::iso8601);
}

}  // namespace kestrom::services

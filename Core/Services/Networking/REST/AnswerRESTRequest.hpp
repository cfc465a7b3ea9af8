#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <string>
#include <utility>
#include <variant>

namespace kestrom::services {

/// The answers of a case.
class AnswerRESTRequest final : public CodableRESTRequest {
 public:
  struct Submit {
    models::BotAPIAnswerDTO answer;
    std::string kestromID;
  };
  struct GetHistory {
    std::string kestromID;
  };

  static AnswerRESTRequest submit(models::BotAPIAnswerDTO answer, std::string kestromID) {
    return AnswerRESTRequest(Submit{std::move(answer), std::move(kestromID)});
  }
  static AnswerRESTRequest getHistory(std::string kestromID) {
    return AnswerRESTRequest(GetHistory{std::move(kestromID)});
  }

  std::string path() const override;
  RESTMethod method() const override;
  std::optional<foundation::Bytes> body(const foundation::Clock& clock) const override;

 private:
  using Form = std::variant<Submit, GetHistory>;

  explicit AnswerRESTRequest(Form form) : _form(std::move(form)) {}

  Form _form;
};

}  // namespace kestrom::services

#pragma once

#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <string>
#include <utility>
#include <variant>

namespace kestrom::services {

/// What a case can be asked for and told.
class KestromObjectRESTRequest final : public CodableRESTRequest {
 public:
  /// The case itself.
  struct KestromObject {
    std::string kestromId;
  };
  /// The state of a case, for a host that shows no flow. Needs no token.
  struct StatusCheck {
    std::string zipCode;
    std::string accessCode;
  };
  /// Hands the finished case in.
  struct Submit {
    std::string kestromID;
  };
  /// The template of a bot.
  struct GetBot {
    std::string id;
  };

  static KestromObjectRESTRequest kestromObject(std::string kestromId) {
    return KestromObjectRESTRequest(KestromObject{std::move(kestromId)});
  }
  static KestromObjectRESTRequest statusCheck(std::string zipCode, std::string accessCode) {
    return KestromObjectRESTRequest(StatusCheck{std::move(zipCode), std::move(accessCode)});
  }
  static KestromObjectRESTRequest submit(std::string kestromID) {
    return KestromObjectRESTRequest(Submit{std::move(kestromID)});
  }
  static KestromObjectRESTRequest getBot(std::string id) { return KestromObjectRESTRequest(GetBot{std::move(id)}); }

  std::string path() const override;
  RESTMethod method() const override;
  std::optional<foundation::Bytes> body(const foundation::Clock& clock) const override;

 private:
  using Form = std::variant<KestromObject, StatusCheck, Submit, GetBot>;

  explicit KestromObjectRESTRequest(Form form) : _form(std::move(form)) {}

  Form _form;
};

}  // namespace kestrom::services

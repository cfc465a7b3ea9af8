#pragma once

#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <string>
#include <utility>

namespace kestrom::services {

/// The brand record of an organization, which a header names. Needs no token.
class ConfigurationRESTRequest final : public CodableRESTRequest {
 public:
  static ConfigurationRESTRequest getConfiguration(std::string organizationId) {
    return ConfigurationRESTRequest(std::move(organizationId));
  }

  std::string path() const override { return "/brand-configs/sdk"; }
  RESTMethod method() const override { return RESTMethod::get; }
  std::optional<foundation::Bytes> body(const foundation::Clock&) const override { return std::nullopt; }
  networking::HTTPHeaders headers() const override {
    networking::HTTPHeaders headers = CodableRESTRequest::headers();
    headers.set("organizationId", _organizationId);
    return headers;
  }

 private:
  explicit ConfigurationRESTRequest(std::string organizationId) : _organizationId(std::move(organizationId)) {}

  std::string _organizationId;
};

}  // namespace kestrom::services

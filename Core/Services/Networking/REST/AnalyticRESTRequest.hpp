#pragma once

#include "Core/Models/KestromEventDTO.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <utility>
#include <vector>

namespace kestrom::services {

/// A batch of analytics events.
class AnalyticRESTRequest final : public CodableRESTRequest {
 public:
  static AnalyticRESTRequest uploadEvents(std::vector<models::KestromEventDTO> events) {
    return AnalyticRESTRequest({std::move(events)});
  }

  std::string path() const override { return "/integrations/analytics/fullstory/batched-events"; }
  RESTMethod method() const override { return RESTMethod::post; }
  std::optional<foundation::Bytes> body(const foundation::Clock&) const override {
    return encoded(_batch, foundation::DateStrategy::iso8601);
  }

 private:
  explicit AnalyticRESTRequest(models::EventBatchDTO batch) : _batch(std::move(batch)) {}

  models::EventBatchDTO _batch;
};

}  // namespace kestrom::services

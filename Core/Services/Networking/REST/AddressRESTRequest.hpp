#pragma once

#include "Core/Services/Networking/REST/RESTRequest.hpp"

namespace kestrom::services {

/// The address at a place, with a picture of the map around it.
class AddressRESTRequest final : public CodableRESTRequest {
 public:
  /// Degrees.
  struct Place {
    double longitude = 0;
    double latitude = 0;
  };

  static AddressRESTRequest getAddress(Place place) { return AddressRESTRequest(place); }

  std::string path() const override { return "/integrations/geolocations/geocode"; }
  RESTMethod method() const override { return RESTMethod::post; }
  std::optional<foundation::Bytes> body(const foundation::Clock& clock) const override;

 private:
  explicit AddressRESTRequest(Place place) : _place(place) {}

  Place _place;
};

}  // namespace kestrom::services

#pragma once

#include "Core/Services/Networking/REST/URLRequestModifier.hpp"
#include "Kestrom/Platform/Bundle.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Tells the server the versions of the interface and of the kit. At once, inside `sink`.
class StandardRequestInserter final : public URLRequestModifier {
 public:
  /// `sdkBundle` is the kit's own, not the host's.
  explicit StandardRequestInserter(std::shared_ptr<const foundation::Bundle> sdkBundle)
      : _sdkBundle(std::move(sdkBundle)) {}

  reactive::Publisher<networking::URLRequest, reactive::Never> modified(networking::URLRequest request) const override;

 private:
  std::shared_ptr<const foundation::Bundle> _sdkBundle;
};

}  // namespace kestrom::services

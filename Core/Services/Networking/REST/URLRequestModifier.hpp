#pragma once

#include "Kestrom/Platform/URLRequest.hpp"
#include "Platform/Reactive/Publisher.hpp"

namespace kestrom::services {

/// Changes each request before it goes out. May take its time.
class URLRequestModifier {
 public:
  virtual ~URLRequestModifier() = default;

  virtual reactive::Publisher<networking::URLRequest, reactive::Never> modified(
      networking::URLRequest request) const = 0;
};

}  // namespace kestrom::services

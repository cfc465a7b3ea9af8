#pragma once

#include "Core/SDK/SessionStore.hpp"
#include "Core/Services/Networking/REST/URLRequestModifier.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Says who is signed in when the request passes; without a user it adds nothing. At once, inside `sink`.
class AuthenticatedRequestInserter final : public URLRequestModifier {
 public:
  explicit AuthenticatedRequestInserter(std::shared_ptr<const session::SessionStore> store)
      : _store(std::move(store)) {}

  reactive::Publisher<networking::URLRequest, reactive::Never> modified(networking::URLRequest request) const override;

 private:
  std::shared_ptr<const session::SessionStore> _store;
};

}  // namespace kestrom::services

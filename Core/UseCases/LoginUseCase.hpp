#pragma once

#include "Core/Models/KestromObjectDetails.hpp"
#include "Core/Services/Networking/REST/RESTError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <string>

namespace kestrom::usecases {

/// Signs in and opens the case of the two codes.
class LoginUseCase {
 public:
  struct Request {
    std::string accessCode;
    std::string zipCode;
    /// The codes came from a link, nobody typed them; only told on the event feed.
    bool isDeeplink = false;
  };

  virtual ~LoginUseCase() = default;

  /// One case or one failure on the main queue, for each subscription a login of its own. When the case comes, the
  /// store has its token, the events its user, and the login is posted as an event. After a failure the store keeps
  /// what was written: with a case that does not load stays the token. The profile that goes to the server on the way
  /// is a courtesy, whose failure nobody sees. Subscribe on the main queue; the publisher may outlive the use case.
  virtual reactive::Publisher<models::KestromObjectDetails, services::RESTError> execute(Request request) = 0;
};

}  // namespace kestrom::usecases

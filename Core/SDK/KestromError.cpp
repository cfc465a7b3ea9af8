#include "Kestrom/KestromError.hpp"

namespace kestrom {

const char* KestromError::what() const noexcept {
  if (std::holds_alternative<APIError>(form)) return "the server refused";
  if (std::holds_alternative<NetworkError>(form)) return "no connection to the internet";
  return "unknown failure";
}

}  // namespace kestrom

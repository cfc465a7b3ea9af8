#include "Platform/Foundation/UUID.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>

namespace kestrom::foundation {

std::string makeUUIDString() {
  // Seeded once a thread from the system's entropy: a request of it for each identifier would cost more than the row of
  // the chat that carries it.
  static thread_local boost::uuids::random_generator_mt19937 generator;
  std::string text = boost::uuids::to_string(generator());
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'f' ? c - 'a' + 'A' : c; });
  return text;
}

}  // namespace kestrom::foundation

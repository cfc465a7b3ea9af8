#pragma once

#include "Apps/kestrom/HostOptions.hpp"

#include <iosfwd>
#include <string>

namespace kestrom::app {

struct StatusArguments {
  HostOptions host;
  std::string zipCode;
  std::string accessCode;
};

/// Prints the state of a case as JSON, or the failure. Gives the exit status.
int runStatus(const StatusArguments& arguments, std::ostream& out, std::ostream& err);

}  // namespace kestrom::app

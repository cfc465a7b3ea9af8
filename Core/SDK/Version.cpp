#include "Kestrom/Version.hpp"

namespace kestrom {

const double KestromVersionNumber = 1.0;
const char* const KestromVersionString = "@(#)PROGRAM:Kestrom  PROJECT:Kestrom-1\n";

}  // namespace kestrom

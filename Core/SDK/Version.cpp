#include "Kestrom/Version.hpp"

extern "C" {

const double KestromVersionNumber = 1.0;
const char KestromVersionString[] = "@(#)PROGRAM:Kestrom  PROJECT:Kestrom-1\n";

}  // extern "C"

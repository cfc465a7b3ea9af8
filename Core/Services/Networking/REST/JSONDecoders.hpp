#pragma once

#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/JSONDecoding.hpp"

namespace kestrom::services {

/// How the body of an answer is read.
using JSONDecoder = foundation::DecodingOptions;

/// For all calls that say nothing else: dates are "yyyy-MM-dd HH:mm:ss", in the device's locale and time zone.
const JSONDecoder& defaultDecoder();

/// For the history of answers: dates are "yyyy-MM-dd'T'HH:mm:ss.SSSZ", and local file addresses in stored texts are
/// moved onto the present documents directory.
JSONDecoder answersDecoder(foundation::URL documentsDirectory);

}  // namespace kestrom::services

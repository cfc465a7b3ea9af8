#pragma once

#include "Apps/kestrom/Lint/DocumentPlaces.hpp"
#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"
#include "Platform/Foundation/JSONDecoding.hpp"

#include <vector>

/// The rules on the document as JSON: decoding-error, nesting-limit, duplicate-key.
namespace kestrom::app {

/// Reports the errors of decoding, and gives the nodes at which they stand. The errors must outlive `places`.
UnsoundNodes reportDecodingErrors(const std::vector<foundation::DecodingError>& errors, DocumentPlaces& places,
                                  LintReport& report);

/// Reports the keys that stand more than once in their object, wherever that is in the document.
void reportDuplicateKeys(DocumentPlaces& places, LintReport& report);

}  // namespace kestrom::app

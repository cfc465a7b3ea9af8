#pragma once

#include "Apps/kestrom/Lint/DocumentPlaces.hpp"
#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"
#include "Platform/Foundation/JSONDecoding.hpp"

#include <string>
#include <vector>

/// The rules on the document as JSON: decoding-error, nesting-limit, duplicate-key, misspelt-key.
namespace kestrom::app {

/// The sentence of a finding that keeps the whole template from being decoded.
std::string refusal(std::string reason);

/// Reports the errors of decoding, and gives the nodes at which they stand. The errors must outlive `places`.
UnsoundNodes reportDecodingErrors(const std::vector<foundation::DecodingError>& errors, DocumentPlaces& places,
                                  LintReport& report);

/// Reports keys that stand more than once in their object, wherever that is in the document, and those that look like a
/// key of the template's records but are none.
void reportKeys(DocumentPlaces& places, LintReport& report);

}  // namespace kestrom::app

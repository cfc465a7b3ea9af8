#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

#include <cstdint>

namespace kestrom::app {

/// The rules on what a question offers and accepts: choice-without-options, capture-without-camera,
/// duplicate-option-key, inverted-value-range, inverted-length-range.
void checkChoices(const TemplateVisit& visit, std::int64_t presentYear, LintReport& report);

}  // namespace kestrom::app

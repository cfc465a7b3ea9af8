#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on what a question offers and accepts: choice-without-options, inverted-value-range, inverted-length-range,
/// menu-key-mismatch, duplicate-arm-key.
void checkChoices(const TemplateVisit& visit, LintReport& report);

}  // namespace kestrom::app

#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on fields that should not be there, or should: ignored-field, missing-text.
void checkFields(const TemplateVisit& visit, LintReport& report);

}  // namespace kestrom::app

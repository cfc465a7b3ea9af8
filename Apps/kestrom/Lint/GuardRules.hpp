#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

#include <cstdint>

namespace kestrom::app {

/// The rules on the guards of a branching node: dead-guard, shadowing-guard, misleading-case. What is not certain is
/// not reported.
void checkGuards(const TemplateVisit& visit, std::int64_t presentYear, LintReport& report);

}  // namespace kestrom::app

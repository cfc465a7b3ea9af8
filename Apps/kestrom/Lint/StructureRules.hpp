#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on what kind of node stands where: top-level-leaf, module-leaf.
void checkStructure(const TemplateVisit& visit, LintReport& report);

}  // namespace kestrom::app

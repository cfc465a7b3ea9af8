#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on what repeats: endless-repeat, gate-never-repeats, gate-not-first. They look at the first children of the
/// node's lists, unless those are among `unsound`.
void checkRepeats(const TemplateVisit& visit, const UnsoundNodes& unsound, LintReport& report);

}  // namespace kestrom::app

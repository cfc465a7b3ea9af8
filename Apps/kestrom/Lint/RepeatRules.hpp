#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on what repeats: endless-repeat, missing-repeat-text, gate-never-repeats, gate-always-repeats,
/// gate-not-first, nested-repeat. They look at the children of the node's lists, except those that are `unsound`.
void checkRepeats(const TemplateVisit& visit, const UnsoundNodes& unsound, LintReport& report);

}  // namespace kestrom::app

#pragma once

#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

/// The rules on menus: menu-key-mismatch, duplicate-arm-key, menu-type, menu-in-repeat.
void checkMenu(const TemplateVisit& visit, LintReport& report);

}  // namespace kestrom::app

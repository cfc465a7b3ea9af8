#include "Apps/kestrom/Lint/StructureRules.hpp"

#include "Apps/kestrom/Lint/AnswerForms.hpp"

namespace kestrom::app {

void checkStructure(const TemplateVisit& visit, LintReport& report) {
  if (visit.isTopLevel && visit.kind == NodeKind::leaf) {
    report.add(rules::kTopLevelLeaf, visit.place,
               "a node without a list at the top level is passed over: it is never shown, and counts as a finished "
               "module");
    return;
  }
  if (visit.kind != NodeKind::sequence && answerFormOf(visit.node) == AnswerForm::none) {
    report.add(rules::kModuleLeaf, visit.place.member("type"),
               "a question of type \"module\" shows nothing and is never answered: the conversation stops here; only a "
               "node that holds a sequence can be a module");
  }
}

}  // namespace kestrom::app

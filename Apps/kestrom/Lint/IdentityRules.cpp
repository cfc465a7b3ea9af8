#include "Apps/kestrom/Lint/IdentityRules.hpp"

#include <algorithm>
#include <string>

namespace kestrom::app {

namespace {

/// Arms that may share an identity; what more there are is not compared, to stay quick in a hostile template.
constexpr std::size_t kMaximumUses = 64;

/// What the walk does with two nodes of one identity, in the order in which it comes to them.
std::string consequence(NodeKind first, NodeKind second) {
  if (first == NodeKind::sequence && second == NodeKind::sequence) {
    return "the answers of both are filed under one module";
  }
  if (first == NodeKind::sequence || second == NodeKind::sequence) {
    return "one is a module and the other a question, so that the walk keeps them apart, but whoever reads the answers "
           "cannot";
  }
  if (first == NodeKind::menu) {
    return "the menu takes all answers that are filed under it at its first visit, and this one is asked without end";
  }
  if (second == NodeKind::menu) {
    return first == NodeKind::branching
               ? "the answer to a branching node is not used up, so that this menu takes it for a pick, which names no "
                 "arm or walks one unasked"
               : "the first visit takes the first answer, and this menu all others, so that after an edit or a restart "
                 "an answer counts for the wrong one";
  }
  if (first == NodeKind::branching) {
    return "the answer to a branching node is not used up, so that it serves both visits, and this one is never asked";
  }
  return "the first visit takes the first answer and the second visit the next; in one module the second answer also "
         "replaces the first one where answers are kept, and a question comes back after a restart";
}

}  // namespace

void IdentityRules::check(const TemplateVisit& visit, LintReport& report) {
  auto& uses = _uses[visit.node.id];
  // Of the branches of one node only one is walked.
  const auto isReachedToo = [&](const Use& use) { return !visit.place.isApartInList(use.place, "branches"); };
  const auto first = std::ranges::find_if(uses, isReachedToo);
  if (first == uses.end()) {
    if (uses.size() < kMaximumUses) uses.push_back({visit.place, visit.kind});
    return;
  }
  const bool hasMenu = first->kind == NodeKind::menu || visit.kind == NodeKind::menu;
  const bool hasSequence = first->kind == NodeKind::sequence || visit.kind == NodeKind::sequence;
  report.add(rules::kDuplicateId, hasMenu && !hasSequence ? Severity::error : Severity::warning,
             visit.place.member("id"),
             "the id " + quoted(visit.node.id) + " is also that of " + first->place.path() + ": " +
                 consequence(first->kind, visit.kind));
}

}  // namespace kestrom::app

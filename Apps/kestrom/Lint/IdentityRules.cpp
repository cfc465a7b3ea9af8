#include "Apps/kestrom/Lint/IdentityRules.hpp"

#include <string>

namespace kestrom::app {

namespace {

/// What the walk does with two nodes of one identity, in the order in which it comes to them.
std::string consequence(NodeKind first, NodeKind second) {
  if (first == NodeKind::sequence && second == NodeKind::sequence) {
    return "what is answered in either is filed under one module";
  }
  if (first == NodeKind::sequence || second == NodeKind::sequence) {
    return "one of them is a module and takes no answers, so that the walk keeps them apart, but whoever reads the "
           "answers may not";
  }
  if (first == NodeKind::menu) {
    return "the menu takes every answer that is filed under the identity, also those that were given here, as choices "
           "of an arm";
  }
  if (first == NodeKind::branching) {
    return "the answer to a branching node is not used up, so that the one given there counts here too, and this is "
           "not asked";
  }
  return "the first visit takes the first answer that is filed under the identity, the next visit the next one, so "
         "that after an edit or in another order an answer counts for the wrong question";
}

}  // namespace

void IdentityRules::check(const TemplateVisit& visit, LintReport& report) {
  const auto [use, isNew] = _firstUses.try_emplace(visit.node.id, FirstUse{visit.place, visit.kind});
  if (isNew) return;
  const FirstUse& first = use->second;
  const bool isEither = visit.place.isApartInList(first.place, "branches");
  report.add(rules::kDuplicateId, visit.place.member("id"),
             "the id " + quoted(visit.node.id) + " is also that of " + first.place.path() + ": " +
                 (isEither ? "only one of the two arms is walked, and after an edit that changes the arm, what was "
                             "answered in one counts in the other"
                           : consequence(first.kind, visit.kind)));
}

}  // namespace kestrom::app

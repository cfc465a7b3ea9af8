#include "Apps/kestrom/Lint/TemplateLinter.hpp"

#include "Apps/kestrom/Lint/ChoiceRules.hpp"
#include "Apps/kestrom/Lint/DocumentRules.hpp"
#include "Apps/kestrom/Lint/FieldRules.hpp"
#include "Apps/kestrom/Lint/GuardRules.hpp"
#include "Apps/kestrom/Lint/IdentityRules.hpp"
#include "Apps/kestrom/Lint/MenuRules.hpp"
#include "Apps/kestrom/Lint/PlaceholderRules.hpp"
#include "Apps/kestrom/Lint/RepeatRules.hpp"
#include "Apps/kestrom/Lint/StructureRules.hpp"
#include "Apps/kestrom/Lint/TemplateVisit.hpp"
#include "Core/Models/BotTemplateCoding.hpp"

#include <cstddef>
#include <utility>

namespace kestrom::app {

using foundation::DecodingContext;
using foundation::DecodingError;
using foundation::JSONDocument;
using foundation::JSONValue;
using models::BotNode;
using models::BotTemplate;
using models::NodeList;

namespace {

/// The lists that the walk reads for a node, without those of which the document holds no list: where it has a fault,
/// the record has more than the document.
std::vector<WalkedList> walkedLists(const BotNode& node, const Place& place) {
  std::vector<WalkedList> lists;
  const auto add = [&lists](const NodeList& nodes, const Place& holder) {
    const auto value = holder.value().member("sequence");
    if (value && value->isArray()) lists.push_back({&nodes, holder.member("sequence", *value)});
  };
  switch (kindOf(node)) {
    case NodeKind::sequence:
      add(*node.sequence, place);
      break;
    case NodeKind::menu: {
      const Place arms = place.member("adventures");
      auto element = arms.value().begin();
      for (std::size_t index = 0; index < node.adventures->size(); ++index, ++element) {
        add((*node.adventures)[index].adventure.sequence, arms.element(index, *element).member("adventure"));
      }
      break;
    }
    case NodeKind::branching: {
      const Place guards = place.member("branches");
      auto element = guards.value().begin();
      for (std::size_t index = 0; index < node.branches->size(); ++index, ++element) {
        const auto& branch = (*node.branches)[index].branch;
        if (branch) add(branch->sequence, guards.element(index, *element).member("branch"));
      }
      break;
    }
    case NodeKind::leaf:
      break;
  }
  return lists;
}

/// All rules that look at one node after the other.
class NodeRules {
 public:
  NodeRules(const LintOptions& options, const UnsoundNodes& unsound, LintReport& report)
      : _options(options), _unsound(unsound), _placeholders(options.caseObject), _report(report) {}

  /// Nothing more that they find would be told.
  bool isDone() const { return _report.isCut(); }

  void check(const TemplateVisit& visit) {
    checkStructure(visit, _report);
    checkFields(visit, _report);
    checkChoices(visit, _options.presentYear, _report);
    checkMenu(visit, _report);
    checkRepeats(visit, _unsound, _report);
    checkGuards(visit, _options.presentYear, _report);
    _identities.check(visit, _report);
    _placeholders.check(visit, _report);
  }

 private:
  const LintOptions& _options;
  const UnsoundNodes& _unsound;
  IdentityRules _identities;
  PlaceholderRules _placeholders;
  LintReport& _report;
};

/// Goes through what the walk can come to, depth first in the order of the document.
void visitNodes(const BotTemplate& whole, DocumentPlaces& places, const UnsoundNodes& unsound, NodeRules& rules) {
  struct Open {
    WalkedList list;
    JSONValue::Iterator element;
    std::size_t next;
    bool isInRepeat;
  };
  std::vector<Open> open;
  const auto enter = [&open](const WalkedList& list, bool isInRepeat) {
    open.push_back({list, list.place.value().begin(), 0, isInRepeat});
  };

  const auto root = places.root().value().member("sequence");
  if (root && root->isArray()) enter({&whole.sequence, places.root().member("sequence", *root)}, false);
  while (!open.empty() && !rules.isDone()) {
    Open& top = open.back();
    if (top.next == top.list.nodes->size()) {
      open.pop_back();
      continue;
    }
    const BotNode& node = (*top.list.nodes)[top.next];
    const Place place = top.list.place.element(top.next, *top.element);
    ++top.next;
    ++top.element;

    const TemplateVisit visit{node, place, kindOf(node), open.size() == 1, top.isInRepeat, walkedLists(node, place)};
    const bool isInRepeat = visit.isInRepeat || isRepeating(node);
    if (!unsound.contains(place)) rules.check(visit);
    for (auto list = visit.lists.rbegin(); list != visit.lists.rend(); ++list) enter(*list, isInRepeat);
  }
}

}  // namespace

LintResult lintTemplate(std::string_view text, const LintOptions& options) {
  const auto document = JSONDocument::parse(text);
  if (!document) {
    const auto& rule = rules::kDecodingError;
    return {{{"", rule.severity, rule.name, refusal(document.error().description)}}};
  }

  const auto decoded = models::decodeBotTemplateTolerantly(*document);
  DocumentPlaces places(document->root());
  LintReport report;
  const UnsoundNodes unsound = reportDecodingErrors(decoded.errors, places, report);
  // Behind the last error that was collected nothing is known any more.
  if (decoded.errors.size() < DecodingContext::kMaximumErrors) {
    reportKeys(places, report);
    NodeRules rules(options, unsound, report);
    visitNodes(decoded.record, places, unsound, rules);
  }
  const bool isCut = report.isCut() || decoded.errors.size() >= DecodingContext::kMaximumErrors;
  return {std::move(report).inDocumentOrder(), isCut};
}

}  // namespace kestrom::app

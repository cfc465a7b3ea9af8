#include "Apps/kestrom/Lint/TemplateVisit.hpp"

namespace kestrom::app {

using models::BotNode;

NodeKind kindOf(const BotNode& node) {
  if (node.sequence) return NodeKind::sequence;
  if (node.adventures) return NodeKind::menu;
  if (node.branches) return NodeKind::branching;
  return NodeKind::leaf;
}

bool isRepeating(const BotNode& node) {
  // The bound counts passes, the first one included.
  const bool isBounded = node.repeatableDetails && node.repeatableDetails->maxRepeats.value_or(2) < 2;
  return node.repeatable.value_or(false) && kindOf(node) != NodeKind::leaf && !isBounded;
}

}  // namespace kestrom::app

#pragma once

#include "Apps/kestrom/Lint/DocumentPlaces.hpp"
#include "Apps/kestrom/Lint/LintReport.hpp"
#include "Core/Models/BotTemplate.hpp"

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

namespace kestrom::app {

/// How the walk treats a node: by the list that it holds.
enum class NodeKind : std::uint8_t { sequence, menu, branching, leaf };

NodeKind kindOf(const models::BotNode& node);

/// Whether what the node holds is walked more than once when its gate says so.
bool isRepeating(const models::BotNode& node);

/// A list that the walk goes through for a node: its children, or those of one of its arms.
struct WalkedList {
  const models::NodeList* nodes;
  Place place;
};

/// One node on the linter's way through the template, as the rules see it.
struct TemplateVisit {
  const models::BotNode& node;
  Place place;
  NodeKind kind;
  bool isTopLevel;
  /// Some list around the node repeats.
  bool isInRepeat;
  /// Lists that the walk reads for this node, in the document's order.
  std::vector<WalkedList> lists;
};

/// The nodes that did not decode whole: what the record holds for them is not what the template says.
class UnsoundNodes {
 public:
  void add(const Place& place) { _positions.insert(place.value().position()); }
  bool contains(const Place& place) const { return _positions.contains(place.value().position()); }

 private:
  std::unordered_set<std::size_t> _positions;
};

}  // namespace kestrom::app

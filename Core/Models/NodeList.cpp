#include "Core/Models/NodeList.hpp"

#include "Core/Models/BotTemplate.hpp"

#include <utility>

namespace kestrom::models {

namespace {

/// Moves the lists below `nodes` to `below`, so that freeing `nodes` frees no subtree.
void detachLists(std::vector<BotNode>& nodes, std::vector<NodeList>& below) {
  const auto detach = [&](NodeList& list) {
    if (!list.empty()) below.push_back(std::move(list));
  };
  for (BotNode& node : nodes) {
    if (node.sequence) detach(*node.sequence);
    if (node.adventures) {
      for (AdventureNode& arm : *node.adventures) detach(arm.adventure.sequence);
    }
    if (node.branches) {
      for (ConditionalNode& guard : *node.branches) {
        if (guard.branch) detach(guard.branch->sequence);
      }
    }
  }
}

}  // namespace

NodeList::NodeList() = default;
NodeList::NodeList(std::vector<BotNode> nodes) : _nodes(std::move(nodes)) {}
NodeList::NodeList(const NodeList&) = default;
NodeList::NodeList(NodeList&&) noexcept = default;
NodeList& NodeList::operator=(const NodeList& other) {
  NodeList copy(other);
  _nodes.swap(copy._nodes);
  return *this;
}
NodeList& NodeList::operator=(NodeList&& other) noexcept {
  _nodes.swap(other._nodes);
  return *this;
}

NodeList::~NodeList() {
  std::vector<NodeList> below;
  detachLists(_nodes, below);
  while (!below.empty()) {
    NodeList list = std::move(below.back());
    below.pop_back();
    detachLists(list._nodes, below);
    // What is left of `list` has nothing below it, so that its own destructor finds nothing to detach.
  }
}

void NodeList::reserve(std::size_t count) {
  _nodes.reserve(count);
}

BotNode& NodeList::append() {
  return _nodes.emplace_back();
}

bool operator==(const NodeList& a, const NodeList& b) {
  return a._nodes == b._nodes;
}

}  // namespace kestrom::models

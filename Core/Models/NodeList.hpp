#pragma once

#include <cstddef>
#include <vector>

namespace kestrom::models {

struct BotNode;

/// A list of nodes of a template, in the order in which they are walked. A vector that frees what lies below its nodes
/// without recursion, because a template may nest deeper than a small thread's stack allows. Copying and comparing
/// recurse: they are for templates of ordinary depth. The address of a node is stable as long as the list does not
/// grow.
class NodeList {
 public:
  NodeList();
  NodeList(std::vector<BotNode> nodes);  // NOLINT(google-explicit-constructor): a list of nodes is a node list
  NodeList(const NodeList&);
  NodeList(NodeList&&) noexcept;
  NodeList& operator=(const NodeList&);
  NodeList& operator=(NodeList&&) noexcept;
  ~NodeList();

  bool empty() const { return size() == 0; }
  std::size_t size() const;
  const BotNode* begin() const;
  const BotNode* end() const;
  const BotNode& front() const { return *begin(); }
  const BotNode& operator[](std::size_t index) const;

  void reserve(std::size_t count);
  /// Appends an empty node and returns it.
  BotNode& append();

  friend bool operator==(const NodeList& a, const NodeList& b);

 private:
  std::vector<BotNode> _nodes;
};

}  // namespace kestrom::models

#pragma once

#include "Tests/Support/TemplateBuilder.hpp"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace kestrom::benchmarks {

/// A template and the answers that lead to its end.
struct AnsweredTemplate {
  tests::Nodes modules;
  tests::Answers answers;
  /// What every question ends with.
  std::string house = "the house";

  std::string nextId() {
    char id[25];
    std::snprintf(id, sizeof id, "%024llx", 0x9e3779b97f4a7c15ULL * ++_made);
    return id;
  }

  models::BotNode question(std::size_t choice = 3) {
    models::BotNode node = tests::leaf(nextId(), choice % 3 == 0 ? tests::NodeType::text : tests::NodeType::selectOne);
    node.text = "Please tell us about the condition of part " + node.id.substr(20) + " of " + house;
    return node;
  }

  void answer(const models::BotNode& node, const std::string& key, std::int64_t iteration = 0) {
    tests::Answer given = tests::answer(node.id, key, iteration);
    given.answers = {tests::entry(key, "In a good state, " + node.id.substr(18))};
    given.moduleId = "0123456789abcdef01234567";
    answers.push_back(std::move(given));
  }

  models::BotNode answeredQuestion(std::size_t choice) {
    models::BotNode node = question(choice);
    answer(node, tests::numbered("choice_number_", choice));
    return node;
  }

  /// Modules of twenty questions, of which one opens a branch and one is a menu of two arms, until there are so many
  /// answers; and a question that has none.
  void addTypicalModules(std::size_t questions) {
    while (answers.size() < questions) {
      tests::Nodes nodes;
      for (std::size_t index = 0; index < 14; ++index) nodes.push_back(answeredQuestion(index));
      models::BotNode gate = answeredQuestion(1);
      gate.branches = {tests::when("no", {}), tests::when("choice_number_1", {answeredQuestion(2)})};
      nodes.push_back(std::move(gate));

      models::BotNode menu = question();
      answer(menu, "kitchen");
      std::vector<models::AdventureNode> arms{tests::arm("kitchen", {answeredQuestion(4)})};
      answer(menu, "bathroom", 1);
      arms.push_back(tests::arm("bathroom", {answeredQuestion(5)}));
      menu.adventures = std::move(arms);
      nodes.push_back(std::move(menu));
      modules.push_back(tests::module(nextId(), std::move(nodes)));
    }
    modules.push_back(tests::module(nextId(), {question()}));
  }

 private:
  unsigned long long _made = 0;
};

}  // namespace kestrom::benchmarks

#pragma once

#include "Core/Models/BotTemplate.hpp"
#include "Core/Models/NativeBotEngineAnswerDTO.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace kestrom::app {

/// Answers to a branching node that stand for all that the app can give, as far as its guards can tell them apart.
/// Where the answers are few, they are all there; where they are typed, there is one for each stretch between the
/// literals of the guards.
class AnswerSamples {
 public:
  AnswerSamples(const models::BotNode& node, std::int64_t presentYear);

  const std::vector<models::NativeBotEngineAnswerDTO>& answers() const { return _answers; }

  /// Whether the samples are enough to judge the case by itself: it holds for all answers when it does for all samples,
  /// and for none when it does for none. False where it looks into texts that nobody can know.
  bool areEnoughFor(const models::ConditionalNode::Case& test) const;

  /// Whether they are enough to judge several cases together, if they are for each.
  bool areEnoughTogether() const { return _coverage != Coverage::single; }

 private:
  enum class Coverage : std::uint8_t {
    complete,  ///< every answer is there
    typed,     ///< texts: enough for all but the order and the parts of strings
    single,    ///< more selections than can be tried: enough for one case at a time
  };

  void addChoices(const models::BotNode& node);
  void addSelections(const models::BotNode& node);
  void addSomeSelections(const models::BotNode& node, const std::vector<std::string>& ordinaryKeys);
  void addTyped(const models::BotNode& node, std::int64_t presentYear);

  std::vector<models::NativeBotEngineAnswerDTO> _answers;
  Coverage _coverage = Coverage::complete;
  /// Some option's key holds the separator, so that a selection's text does not tell which options it is made of.
  bool _isAmbiguous = false;
};

}  // namespace kestrom::app

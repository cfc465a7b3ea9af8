#pragma once

#include "Core/Models/BotAPIAnswerCoding.hpp"

#include <concepts>
#include <string>

namespace kestrom::services {

/// Two answers with one key are the same entry: the later replaces the earlier. There is no separator, so that message
/// "a1" of module "b" and message "a" of module "1b" share theirs.
inline std::string cacheKey(const models::BotAPIAnswerDTO& answer) {
  return answer.messageId + answer.moduleId + std::to_string(answer.iterationId);
}

/// An element that can be replaced in a cached list.
template <class Element>
concept CacheUnique = foundation::Encodable<Element> && requires(const Element& element) {
  { cacheKey(element) } -> std::same_as<std::string>;
};

}  // namespace kestrom::services

#pragma once

#include "Core/Models/BotAnswer.hpp"
#include "Core/Models/KestromObjectDetails.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace kestrom::tests {

/// A choice of the question `messageId`.
inline models::BotAnswer chosenAnswer(std::string messageId, std::string text, std::int64_t iteration = 0,
                                      double secondsSince2001 = 0) {
  models::BotAnswer answer;
  answer.value = {models::BotAnswer::Value::String{std::move(text), "key"}};
  answer.messageId = std::move(messageId);
  answer.moduleId = "module";
  answer.messageType = "select_one";
  answer.iterationId = iteration;
  answer.timestamp = foundation::Date{secondsSince2001};
  return answer;
}

/// A case without a template.
inline models::KestromObjectDetails someCase(std::string id = "case") {
  models::KestromObjectDetails kestrom;
  kestrom.id = std::move(id);
  kestrom.organizationId = "organization";
  kestrom.status = "invited";
  kestrom.bot = std::make_shared<const models::BotTemplate>();
  kestrom.rawJSON = std::make_shared<const foundation::JSONDocument>(foundation::JSONDocument::parse("{}").value());
  return kestrom;
}

}  // namespace kestrom::tests

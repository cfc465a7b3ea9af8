#include "Apps/kestrom/WalkCommand.hpp"

#include "Apps/kestrom/Composition.hpp"
#include "Apps/kestrom/IndentedJSON.hpp"
#include "Apps/kestrom/InputDocuments.hpp"
#include "Apps/kestrom/RowJSON.hpp"
#include "Core/Models/AnswerConversion.hpp"
#include "Core/Models/ConversationCoding.hpp"
#include "Core/Services/Bot/NativeBotEngine.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <expected>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

namespace kestrom::app {

using foundation::Coder;
using foundation::JSONWriter;
using models::ConversationDTO;

namespace {

void writeWalk(const ConversationDTO& walk, JSONWriter& writer) {
  writer.key("progress");
  Coder<ConversationDTO::ProgressDTO>::encode(walk.progress, writer);
  if (walk.lastEditableAnswer) {
    writer.key("lastEditableAnswer");
    Coder<ConversationDTO::MessageDTO>::encode(*walk.lastEditableAnswer, writer);
  }
  writer.key("updatedMessages");
  Coder<std::vector<ConversationDTO::MessageDTO>>::encode(walk.updatedMessages, writer);
}

void writeConversation(const services::Conversation& conversation, JSONWriter& writer) {
  writer.key("messages");
  writeRows(conversation.messages, writer);
  if (conversation.editableMessages) {
    writer.key("editableMessages");
    writeRows(*conversation.editableMessages, writer);
  }
}

/// The whole output, or the line that says which document is unusable.
std::expected<std::string, std::string> walkText(const WalkArguments& arguments, std::istream& in) {
  const auto botTemplate = loadTemplate(arguments.templateFile, in);
  if (!botTemplate) return std::unexpected(botTemplate.error());

  const foundation::URL documentsDirectory = directoryURL(arguments.documentsDirectory);
  std::vector<models::NativeBotEngineAnswerDTO> answers;
  if (arguments.answersFile) {
    const auto given = loadAnswers(*arguments.answersFile, in, documentsDirectory);
    if (!given) return std::unexpected(given.error());
    for (const auto& answer : *given) answers.push_back(models::engineAnswer(answer, documentsDirectory));
  }

  const Now now = [&arguments] {
    return arguments.now ? foundation::Date::fromSecondsSince1970(*arguments.now) : systemTime();
  };
  const ConversationDTO walk = services::NativeBotEngine(now).conversation(answers, botTemplate->sequence);

  JSONWriter writer;
  writer.beginObject();
  writeWalk(walk, writer);
  if (arguments.caseFile) {
    auto rawCase = loadCase(*arguments.caseFile, in);
    if (!rawCase) return std::unexpected(rawCase.error());
    writeConversation(makeConversion(std::move(*rawCase), now).convert(walk), writer);
  }
  writer.endObject();
  return std::move(writer).text();
}

}  // namespace

int runWalk(const WalkArguments& arguments, std::istream& in, std::ostream& out, std::ostream& err) {
  const auto text = walkText(arguments, in);
  if (!text) {
    err << text.error() << '\n';
    return 1;
  }
  out << (arguments.compact ? *text : indentedJSON(*text)) << '\n';
  return 0;
}

}  // namespace kestrom::app

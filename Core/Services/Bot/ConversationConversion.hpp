#pragma once

#include "Core/Models/ConversationDTO.hpp"
#include "Core/Services/Bot/Conversation.hpp"
#include "Core/Services/Bot/HandleBarParser.hpp"
#include "Platform/Foundation/ListFormatter.hpp"
#include "Platform/Imaging/ImageCodec.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrom::services {

/// Turns the records of a walk into the rows of the chat. Pure but for the identifiers and the year that it is handed.
class ConversationConversion {
 public:
  struct Parts {
    HandleBarParser handlebarParser;
    std::shared_ptr<const foundation::ListFormatter> listFormatter;
    std::shared_ptr<const imaging::ImageCodec> imageCodec;
    /// A new identifier a call, for rows that have none of their own.
    std::function<std::string()> makeIdentifier;
    /// The present year in the user's calendar, the upper bound of a year that names none.
    std::function<std::int64_t()> presentYear;
  };

  explicit ConversationConversion(Parts parts);

  Conversation convert(const models::ConversationDTO& conversation) const;

  /// The rows of one record: the bot's part, then the user's bubbles.
  std::vector<models::Message> messages(const models::ConversationDTO::MessageDTO& message) const;

 private:
  using MessageDTO = models::ConversationDTO::MessageDTO;

  void append(const MessageDTO& message, std::vector<models::Message>& rows) const;
  void appendAnswered(const MessageDTO& message, std::vector<models::Message>& rows) const;
  void appendQuestion(const MessageDTO& message, std::vector<models::Message>& rows) const;
  void appendUserBubbles(const MessageDTO& message, std::vector<models::Message>& rows) const;
  void appendUserText(const MessageDTO& message, std::vector<models::Message>& rows) const;
  models::BotTextMessage bubble(const MessageDTO& message, std::string id) const;

  Parts _parts;
};

}  // namespace kestrom::services

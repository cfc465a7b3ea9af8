#pragma once

#include "Core/Models/ChatInputTrigger.hpp"
#include "Kestrom/KestromEvent.hpp"
#include "Kestrom/Platform/Date.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Imaging/Image.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrom::models {

/// The phase of the inspection that a module belongs to.
std::string phaseOfModule(const std::string& moduleKey);

/// A bot's bubble, optionally with an input demand.
struct BotTextMessage {
  std::string id;
  std::string text;
  std::optional<ChatInputTrigger> trigger;
  bool isEditable = false;
  std::int64_t iterationId = 0;
  std::string messageKey;
  std::string moduleId;
  std::string moduleKey;
  std::string messageType;
  std::optional<std::string> cvEndpoint;

  friend bool operator==(const BotTextMessage&, const BotTextMessage&) = default;
};

/// A list of buttons of which one is chosen.
struct SingleSelectionMessage {
  struct Option {
    /// What a tap does on the device, before or instead of an answer.
    enum class LocalAction : std::uint8_t { photo, video, panorama, fnol, meshscan, declineCapture, location };

    std::string id;
    std::string text;
    /// The arm behind it is done already.
    bool wasFulfilled = false;
    std::optional<LocalAction> localAction;

    friend bool operator==(const Option&, const Option&) = default;
  };

  std::string id;
  std::vector<Option> options;
  bool isModuleSelection = false;
  bool isEditable = false;
  std::int64_t iterationId = 0;
  std::string messageKey;
  std::string moduleId;
  std::string moduleKey;
  std::string messageType;
  std::optional<std::string> cvEndpoint;

  friend bool operator==(const SingleSelectionMessage&, const SingleSelectionMessage&) = default;
};

/// A list of buttons of which several are chosen.
struct MultipleSelectionMessage {
  struct Option {
    std::string id;
    std::string text;
    bool isSelected = false;
    /// Selecting it clears the rest.
    bool deselectOthers = false;

    friend bool operator==(const Option&, const Option&) = default;
  };

  std::string id;
  std::vector<Option> options;
  bool isEditable = false;
  std::int64_t iterationId = 0;
  std::string messageKey;
  std::string moduleId;
  std::string moduleKey;
  std::string messageType;
  std::optional<std::string> cvEndpoint;

  friend bool operator==(const MultipleSelectionMessage&, const MultipleSelectionMessage&) = default;
};

struct UserTextMessage {
  std::string id;
  std::string text;
  std::optional<foundation::Date> timestamp;
  bool isEditable = false;
  /// A draft row that keeps the place of typed text while it flies in.
  bool isTextInputIntroductionPlaceholder = false;

  friend bool operator==(const UserTextMessage&, const UserTextMessage&) = default;
};

struct UserPhotoMessage {
  struct State {
    /// The upload failed; the picture is kept for a retry.
    struct Failed {
      imaging::Image image;
      friend bool operator==(const Failed&, const Failed&) = default;
    };
    struct SuccessURL {
      foundation::URL url;
      friend bool operator==(const SuccessURL&, const SuccessURL&) = default;
    };
    struct SuccessData {
      imaging::Image image;
      friend bool operator==(const SuccessData&, const SuccessData&) = default;
    };

    std::variant<Failed, SuccessURL, SuccessData> form;

    friend bool operator==(const State&, const State&) = default;
  };

  std::string id;
  State state;
  std::optional<foundation::Date> timestamp;
  bool isEditable = false;
  bool landscape = false;

  friend bool operator==(const UserPhotoMessage&, const UserPhotoMessage&) = default;
};

struct UserVideoMessage {
  struct State {
    /// Progress from 0 to 1, with the earlier value for animating.
    struct Uploading {
      foundation::URL url;
      float current;
      float previous;
      friend bool operator==(const Uploading&, const Uploading&) = default;
    };
    struct Failed {
      foundation::URL url;
      friend bool operator==(const Failed&, const Failed&) = default;
    };
    struct Success {
      foundation::URL url;
      friend bool operator==(const Success&, const Success&) = default;
    };

    std::variant<Uploading, Failed, Success> form;

    friend bool operator==(const State&, const State&) = default;
  };

  std::string id;
  State state;
  std::optional<foundation::Date> timestamp;
  bool isEditable = false;

  friend bool operator==(const UserVideoMessage&, const UserVideoMessage&) = default;
};

/// A line between rows.
struct InfoMessage {
  std::string id;
  std::string text;
  bool isEditable = false;

  friend bool operator==(const InfoMessage&, const InfoMessage&) = default;
};

/// The bot's typing indicator.
struct TypingMessage {
  std::string identifier;
  bool isEditable = false;
  bool isBotQuestion = false;
  bool isBotMessage = false;

  friend bool operator==(const TypingMessage&, const TypingMessage&) = default;
};

/// One row of the chat. An immutable value: a row is changed by replacing it in the list. Any thread.
struct Message {
  std::variant<BotTextMessage, SingleSelectionMessage, MultipleSelectionMessage, UserTextMessage, UserPhotoMessage,
               UserVideoMessage, InfoMessage, TypingMessage>
      form;

  /// Identity of the row: one node shown again in another iteration is another row.
  std::string identifier() const;
  /// The user can change the row.
  bool isEditable() const;
  /// The row asks for input.
  bool isBotQuestion() const;
  /// The row comes from the bot.
  bool isBotMessage() const;
  /// Absent for rows that are nothing to analytics. `previous` is the row before this one, null for the first.
  std::optional<EventMessageDetails> eventDetails(const Message* previous) const;

  friend bool operator==(const Message&, const Message&) = default;
};

/// Place of a bot's bubble within a run of the bot's bubbles, from which it takes its shape.
enum class BotMessageGroupingGuide : std::uint8_t { standalone, first, last, groupPart };

}  // namespace kestrom::models

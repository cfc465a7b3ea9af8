#pragma once

#include "Kestrom/Platform/Date.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Imaging/Image.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrom::models {

/// An answer as the chat builds it.
struct BotAnswer {
  /// What was answered. A `key` is that of the choice, or of the node where there is no choice.
  struct Value {
    struct Image {
      imaging::Image image;
      std::string key;
      friend bool operator==(const Image&, const Image&) = default;
    };
    struct String {
      std::string text;
      std::string key;
      friend bool operator==(const String&, const String&) = default;
    };
    struct StringArray {
      std::vector<String> values;
      friend bool operator==(const StringArray&, const StringArray&) = default;
    };
    struct Url {
      foundation::URL url;
      std::string key;
      /// The URL is a local file that is not uploaded yet.
      bool isCacheURL;
      friend bool operator==(const Url&, const Url&) = default;
    };
    struct MediaBundle {
      foundation::URL mediaUrl;
      std::optional<foundation::URL> thumbnailUrl;
      bool isCacheURL;
      friend bool operator==(const MediaBundle&, const MediaBundle&) = default;
    };
    struct Empty {
      friend bool operator==(const Empty&, const Empty&) = default;
    };

    std::variant<Empty, Image, String, StringArray, Url, MediaBundle> form;

    friend bool operator==(const Value&, const Value&) = default;
  };

  /// Where it was answered; degrees of latitude and longitude.
  struct Location {
    struct None {
      friend bool operator==(const None&, const None&) = default;
    };
    struct Precise {
      std::string address;
      double lat;
      double lng;
      friend bool operator==(const Precise&, const Precise&) = default;
    };
    struct Relative {
      std::string address;
      double lat;
      double lng;
      friend bool operator==(const Relative&, const Relative&) = default;
    };

    std::variant<None, Precise, Relative> form;

    friend bool operator==(const Location&, const Location&) = default;
  };

  enum class BotAnswerType : std::uint8_t { location, url, mediaBundle, automaticallyContinueWithNextMessage, regular };

  Value value;
  Location location;
  BotAnswerType type = BotAnswerType::regular;
  std::int64_t iterationId = 0;
  std::string messageId;
  std::optional<std::string> messageKey;
  std::string moduleId;
  std::optional<std::string> moduleKey;
  /// Wire string of the node's type.
  std::optional<std::string> messageType;
  /// The moment of answering.
  foundation::Date timestamp;
  /// Result of the computer-vision check.
  std::optional<std::string> context;

  friend bool operator==(const BotAnswer&, const BotAnswer&) = default;
};

}  // namespace kestrom::models

#pragma once

#include "Core/Models/LocationSnapshotDTO.hpp"
#include "Kestrom/Platform/Date.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrom::models {

/// A choice or a typed text with the key that it is filed under.
struct KeyValue {
  std::string key;
  std::string value;

  friend bool operator==(const KeyValue&, const KeyValue&) = default;
};

/// A medium that consists of a file and a picture of it.
struct MediaBundleDTO {
  foundation::URL mediaUrl = foundation::URL::fromFilePath("/");
  std::optional<foundation::URL> thumbnailUrl;

  friend bool operator==(const MediaBundleDTO&, const MediaBundleDTO&) = default;
};

/// Degrees.
struct Coordinate {
  double lat = 0;
  double lng = 0;

  friend bool operator==(const Coordinate&, const Coordinate&) = default;
};

/// An address that was given as an answer.
struct LocationDTO {
  std::string address;
  std::optional<Coordinate> coords;
  /// "precise", "relative" or "none".
  std::string locationType;

  friend bool operator==(const LocationDTO&, const LocationDTO&) = default;
};

/// The shown value of an answer; in JSON the bare form, told apart by what it looks like.
struct BotAnswerValueDTO {
  std::variant<std::string, std::vector<std::string>, LocationDTO, MediaBundleDTO> form;

  friend bool operator==(const BotAnswerValueDTO&, const BotAnswerValueDTO&) = default;
};

/// The value of an answer with its keys; in JSON the bare form, told apart by what it looks like.
struct BotAnswerKeyValueDTO {
  std::variant<KeyValue, std::vector<KeyValue>, LocationDTO, MediaBundleDTO> form;

  friend bool operator==(const BotAnswerKeyValueDTO&, const BotAnswerKeyValueDTO&) = default;
};

/// An answer as the server takes and gives it and as the device keeps it.
struct BotAPIAnswerDTO {
  BotAnswerValueDTO value;
  BotAnswerKeyValueDTO keyValue;
  std::optional<LocationSnapshotDTO> location;
  std::int64_t iterationId = 0;
  std::string messageId;
  std::string moduleId;
  /// Wire string of the node's type.
  std::optional<std::string> type;
  /// "precise", "relative" or "none".
  std::string locationType;
  /// Result of the computer-vision check.
  std::optional<std::string> context;
  foundation::Date answeredAt;
  /// Only on the device: whether the server has this answer.
  std::optional<bool> wasSynced;

  friend bool operator==(const BotAPIAnswerDTO&, const BotAPIAnswerDTO&) = default;
};

/// The server's answer to a request for the answers of a case.
struct AnswersHistoryResponse {
  std::vector<BotAPIAnswerDTO> answers;

  friend bool operator==(const AnswersHistoryResponse&, const AnswersHistoryResponse&) = default;
};

}  // namespace kestrom::models

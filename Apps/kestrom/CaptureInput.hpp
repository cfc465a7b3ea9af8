#pragma once

#include "Core/Models/BotAnswer.hpp"
#include "Core/Models/Message.hpp"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::app {

/// The absolute path of the file that a typed path means; absent when there is no such file.
using FindMediaFile = std::function<std::optional<std::string>(const std::string& path)>;

/// What a capture yields to the chat.
struct CapturedMedia {
  models::BotAnswer::Value value;
  models::BotAnswer::BotAnswerType type;
};

/// Reads the typed path of a capture's file, or for a panorama and a mesh scan the paths of a ".tar" file and of an
/// image, in any order, separated by blanks. `messageKey` is the key under which a photo or a video is filed.
/// The error says what is missing.
std::expected<CapturedMedia, std::string> readCapture(models::SingleSelectionMessage::Option::LocalAction action,
                                                      std::string_view paths, const std::string& messageKey,
                                                      const FindMediaFile& findMediaFile);

}  // namespace kestrom::app

#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/ConversationCoding.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

/// The JSON forms of answers, on the wire and in the device's files. The two differ in their dates only, which the
/// options of the decoder and the strategy of the writer decide.
namespace kestrom::foundation {

template <>
struct Coding<models::KeyValue> {
  static constexpr std::array kFields{field<&models::KeyValue::key>("key"), field<&models::KeyValue::value>("value")};
};

/// Addresses of local files are moved onto the present documents directory; any other address stays as it is.
template <>
struct Coder<models::MediaBundleDTO> {
  static void decode(models::MediaBundleDTO& out, JSONValue value, DecodingContext& context);
  static void encode(const models::MediaBundleDTO& in, JSONWriter& writer);
};

template <>
struct Coding<models::Coordinate> {
  static constexpr std::array kFields{field<&models::Coordinate::lat>("lat"), field<&models::Coordinate::lng>("lng")};
};

template <>
struct Coding<models::LocationDTO> {
  static constexpr std::array kFields{
      field<&models::LocationDTO::address>("address"),
      field<&models::LocationDTO::coords>("coords"),
      field<&models::LocationDTO::locationType>("locationType"),
  };
};

template <>
struct Coder<models::BotAnswerValueDTO> {
  static void decode(models::BotAnswerValueDTO& out, JSONValue value, DecodingContext& context);
  static void encode(const models::BotAnswerValueDTO& in, JSONWriter& writer);
};

template <>
struct Coder<models::BotAnswerKeyValueDTO> {
  static void decode(models::BotAnswerKeyValueDTO& out, JSONValue value, DecodingContext& context);
  static void encode(const models::BotAnswerKeyValueDTO& in, JSONWriter& writer);
};

template <>
struct Coder<models::BotAPIAnswerDTO> {
  static void decode(models::BotAPIAnswerDTO& out, JSONValue value, DecodingContext& context);
  static void encode(const models::BotAPIAnswerDTO& in, JSONWriter& writer);
};

template <>
struct Coding<models::AnswersHistoryResponse> {
  static constexpr std::array kFields{field<&models::AnswersHistoryResponse::answers>("answers")};
};

}  // namespace kestrom::foundation

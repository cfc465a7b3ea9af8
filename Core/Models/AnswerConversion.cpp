#include "Core/Models/AnswerConversion.hpp"

#include "Core/Models/StoredURL.hpp"
#include "Platform/Foundation/FatalError.hpp"

#include <cmath>
#include <string_view>
#include <utility>

namespace kestrom::models {

using foundation::fatalError;
using foundation::URL;
using AnswerDTO = ConversationDTO::AnswerDTO;
using Location = BotAnswer::Location;
using Type = BotAnswer::BotAnswerType;
using Value = BotAnswer::Value;

namespace {

std::string_view typeName(const Location& location) {
  if (std::holds_alternative<Location::Precise>(location.form)) return "precise";
  if (std::holds_alternative<Location::Relative>(location.form)) return "relative";
  return "none";
}

/// The place of a location that has one.
struct Place {
  std::string_view address;
  Coordinate coordinate;
};

std::optional<Place> placeOf(const Location& location) {
  if (const auto* precise = std::get_if<Location::Precise>(&location.form)) {
    return Place{precise->address, {precise->lat, precise->lng}};
  }
  if (const auto* relative = std::get_if<Location::Relative>(&location.form)) {
    return Place{relative->address, {relative->lat, relative->lng}};
  }
  return std::nullopt;
}

LocationDTO locationDTO(const Location& location) {
  const auto place = placeOf(location);
  if (!place) return {"Address not provided", std::nullopt, "none"};
  return {std::string(place->address), place->coordinate, std::string(typeName(location))};
}

std::optional<LocationSnapshotDTO> snapshot(const Location& location) {
  const auto place = placeOf(location);
  if (!place) return std::nullopt;
  return LocationSnapshotDTO{{place->coordinate.lng, place->coordinate.lat}, "Point"};
}

/// The content that an answer's type promises.
template <class Content>
const Content& expected(const BotAnswer& answer, std::string_view mistake) {
  const auto* content = std::get_if<Content>(&answer.value.form);
  if (!content) fatalError(mistake);
  return *content;
}

BotAnswerKeyValueDTO keyValueOf(const BotAnswer& answer) {
  switch (answer.type) {
    case Type::location:
      return {locationDTO(answer.location)};
    case Type::url: {
      const auto& content = expected<Value::Url>(answer, "Mismatched value for BotAnswerType.url");
      return {KeyValue{content.key, content.url.absoluteString()}};
    }
    case Type::mediaBundle: {
      // The sentence keeps the name that the type had first: support looks for it.
      const auto& content = expected<Value::MediaBundle>(answer, "Mismatched value for BotAnswerType.panorama");
      return {MediaBundleDTO{content.mediaUrl, content.thumbnailUrl}};
    }
    case Type::automaticallyContinueWithNextMessage:
      return {KeyValue{}};
    case Type::regular:
      break;
  }
  if (const auto* list = std::get_if<Value::StringArray>(&answer.value.form)) {
    std::vector<KeyValue> values;
    for (const Value::String& entry : list->values) values.push_back({entry.key, entry.text});
    return {std::move(values)};
  }
  const auto& content = expected<Value::String>(answer, "Mismatched value for BotAnswerType.regular");
  return {KeyValue{content.key, content.text}};
}

/// The shown value is the keyed one without its keys.
BotAnswerValueDTO valueOf(const BotAnswerKeyValueDTO& keyed) {
  if (const auto* one = std::get_if<KeyValue>(&keyed.form)) return {one->value};
  if (const auto* list = std::get_if<std::vector<KeyValue>>(&keyed.form)) {
    std::vector<std::string> texts;
    for (const KeyValue& entry : *list) texts.push_back(entry.value);
    return {std::move(texts)};
  }
  if (const auto* location = std::get_if<LocationDTO>(&keyed.form)) return {*location};
  return {std::get<MediaBundleDTO>(keyed.form)};
}

/// Whole milliseconds since 1970, halves away from zero.
double milliseconds(foundation::Date date) {
  return std::round(date.secondsSince1970() * 1000);
}

std::vector<AnswerDTO> bundleEntries(const URL& media, const std::optional<URL>& thumbnail) {
  std::vector<AnswerDTO> entries{{"mediaUrl", AnswerDTO::Value::url(media)}};
  if (thumbnail) entries.push_back({"thumbnailUrl", AnswerDTO::Value::url(*thumbnail)});
  return entries;
}

std::vector<AnswerDTO> entriesOf(const Value& value, const imaging::ImageCodec& codec) {
  if (const auto* image = std::get_if<Value::Image>(&value.form)) {
    return {{image->key, AnswerDTO::Value::data(codec.encodeJPEG(image->image, 1.0).value_or(foundation::Bytes{}))}};
  }
  if (const auto* string = std::get_if<Value::String>(&value.form)) {
    return {{string->key, AnswerDTO::Value::string(string->text)}};
  }
  if (const auto* list = std::get_if<Value::StringArray>(&value.form)) {
    std::vector<AnswerDTO> entries;
    for (const Value::String& entry : list->values) {
      entries.push_back({entry.key, AnswerDTO::Value::string(entry.text)});
    }
    return entries;
  }
  if (const auto* url = std::get_if<Value::Url>(&value.form)) return {{url->key, AnswerDTO::Value::url(url->url)}};
  if (const auto* bundle = std::get_if<Value::MediaBundle>(&value.form)) {
    return bundleEntries(bundle->mediaUrl, bundle->thumbnailUrl);
  }
  return {{"", AnswerDTO::Value::string("")}};
}

URL moved(const URL& url, const URL& documentsDirectory) {
  return storedURL(url.absoluteString(), documentsDirectory).value_or(url);
}

MediaBundleDTO moved(const MediaBundleDTO& bundle, const URL& documentsDirectory) {
  MediaBundleDTO result{moved(bundle.mediaUrl, documentsDirectory), std::nullopt};
  if (bundle.thumbnailUrl) result.thumbnailUrl = moved(*bundle.thumbnailUrl, documentsDirectory);
  return result;
}

std::vector<AnswerDTO> entriesOf(const BotAPIAnswerDTO& answer, const URL& documentsDirectory) {
  if (const auto* one = std::get_if<KeyValue>(&answer.keyValue.form)) {
    if (auto url = storedURL(one->value, documentsDirectory)) {
      return {{one->key, AnswerDTO::Value::url(std::move(*url))}};
    }
    return {{one->key, AnswerDTO::Value::string(one->value)}};
  }
  if (const auto* list = std::get_if<std::vector<KeyValue>>(&answer.keyValue.form)) {
    std::vector<AnswerDTO> entries;
    for (const KeyValue& entry : *list) entries.push_back({entry.key, AnswerDTO::Value::string(entry.value)});
    return entries;
  }
  if (const auto* location = std::get_if<LocationDTO>(&answer.keyValue.form)) {
    return {{"", AnswerDTO::Value::string(location->address)}};
  }
  const MediaBundleDTO bundle = moved(std::get<MediaBundleDTO>(answer.keyValue.form), documentsDirectory);
  return bundleEntries(bundle.mediaUrl, bundle.thumbnailUrl);
}

bool isKnown(const LocationDTO& location) {
  return location.locationType == "precise" || location.locationType == "relative" || location.locationType == "none";
}

Location locationOf(const LocationDTO& location) {
  const Coordinate coordinate = location.coords.value_or(Coordinate{});
  if (location.locationType == "precise") {
    return {Location::Precise{location.address, coordinate.lat, coordinate.lng}};
  }
  if (location.locationType == "relative") {
    return {Location::Relative{location.address, coordinate.lat, coordinate.lng}};
  }
  if (location.locationType != "none") fatalError("Unknown location type of LocationDTO");
  return {};
}

Location locationOf(const BotAPIAnswerDTO& answer) {
  if (const auto* location = std::get_if<LocationDTO>(&answer.value.form)) return locationOf(*location);
  if (!answer.location) return {};
  const std::vector<double>& coordinates = answer.location->coordinates;
  if (coordinates.empty()) return {Location::Precise{"", 0, 0}};
  return {Location::Precise{"", coordinates.back(), coordinates.front()}};
}

/// Value and type of a kept answer, as the chat had them.
std::pair<Value, Type> valueOf(const BotAPIAnswerDTO& answer, const URL& documentsDirectory) {
  if (const auto* kept = std::get_if<MediaBundleDTO>(&answer.keyValue.form)) {
    MediaBundleDTO bundle = moved(*kept, documentsDirectory);
    const bool isCacheURL = bundle.mediaUrl.isFileURL() || (bundle.thumbnailUrl && bundle.thumbnailUrl->isFileURL());
    return {{Value::MediaBundle{std::move(bundle.mediaUrl), std::move(bundle.thumbnailUrl), isCacheURL}},
            Type::mediaBundle};
  }
  if (const auto* location = std::get_if<LocationDTO>(&answer.keyValue.form)) {
    return {{Value::String{location->address, ""}}, Type::location};
  }
  if (const auto* list = std::get_if<std::vector<KeyValue>>(&answer.keyValue.form)) {
    Value::StringArray texts;
    for (const KeyValue& entry : *list) texts.values.push_back({entry.value, entry.key});
    return {{std::move(texts)}, Type::regular};
  }
  const auto& one = std::get<KeyValue>(answer.keyValue.form);
  // What a person typed is delivered as it was typed, even if it looks like the address of a file.
  const bool isTyped = answer.type == "text" || answer.type == "number" || answer.type == "year";
  if (auto url = isTyped ? std::nullopt : storedURL(one.value, documentsDirectory)) {
    const bool isCacheURL = url->isFileURL();
    return {{Value::Url{std::move(*url), one.key, isCacheURL}}, Type::url};
  }
  if (one.key.empty() && one.value.empty()) return {{Value::Empty{}}, Type::automaticallyContinueWithNextMessage};
  return {{Value::String{one.value, one.key}}, Type::regular};
}

}  // namespace

BotAPIAnswerDTO apiAnswer(const BotAnswer& answer, std::optional<bool> wasSynced) {
  BotAnswerKeyValueDTO keyed = keyValueOf(answer);
  BotAnswerValueDTO value = valueOf(keyed);
  return {
      .value = std::move(value),
      .keyValue = std::move(keyed),
      .location = snapshot(answer.location),
      .iterationId = answer.iterationId,
      .messageId = answer.messageId,
      .moduleId = answer.moduleId,
      .type = answer.messageType,
      .locationType = std::string(typeName(answer.location)),
      .context = answer.context.value_or("cv_utilities.na.skip_cv"),
      .answeredAt = answer.timestamp,
      .wasSynced = wasSynced,
  };
}

NativeBotEngineAnswerDTO engineAnswer(const BotAnswer& answer, const imaging::ImageCodec& codec) {
  return {
      .answers = entriesOf(answer.value, codec),
      .location = snapshot(answer.location),
      .locationType = std::string(typeName(answer.location)),
      .iterationId = answer.iterationId,
      .messageId = answer.messageId,
      .moduleId = answer.moduleId,
      .timestamp = milliseconds(answer.timestamp),
  };
}

NativeBotEngineAnswerDTO engineAnswer(const BotAPIAnswerDTO& answer, const URL& documentsDirectory) {
  return {
      .answers = entriesOf(answer, documentsDirectory),
      .location = answer.location,
      .locationType = answer.locationType,
      .iterationId = answer.iterationId,
      .messageId = answer.messageId,
      .moduleId = answer.moduleId,
      .timestamp = milliseconds(answer.answeredAt),
  };
}

std::optional<BotAnswer> botAnswer(const BotAPIAnswerDTO& answer, const URL& documentsDirectory) {
  const auto* location = std::get_if<LocationDTO>(&answer.value.form);
  if (location && !isKnown(*location)) return std::nullopt;
  auto [value, type] = valueOf(answer, documentsDirectory);
  return BotAnswer{
      .value = std::move(value),
      .location = locationOf(answer),
      .type = type,
      .iterationId = answer.iterationId,
      .messageId = answer.messageId,
      .messageKey = std::nullopt,
      .moduleId = answer.moduleId,
      .moduleKey = std::nullopt,
      .messageType = answer.type,
      .timestamp = answer.answeredAt,
      .context = answer.context,
  };
}

}  // namespace kestrom::models

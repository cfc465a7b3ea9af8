#include "Core/Models/BotAPIAnswerDTO.hpp"

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/StoredURL.hpp"

namespace kestrom::foundation {

using models::BotAnswerKeyValueDTO;
using models::BotAnswerValueDTO;
using models::BotAPIAnswerDTO;
using models::KeyValue;
using models::LocationDTO;
using models::MediaBundleDTO;

namespace {

/// Tries one form of an untagged union; its failure is dropped.
template <class Form, class Union>
bool tryForm(Union& out, JSONValue value, DecodingContext& context) {
  Form form{};
  if (!context.attempt([&] { Coder<Form>::decode(form, value, context); })) return false;
  out.form = std::move(form);
  return true;
}

template <class Union>
void encodeForm(const Union& in, JSONWriter& writer) {
  std::visit([&]<class Form>(const Form& form) { Coder<Form>::encode(form, writer); }, in.form);
}

/// What the rule for stored addresses does not take stays as it is.
void decodeMediaURL(URL& out, JSONValue value, DecodingContext& context) {
  Coder<URL>::decode(out, value, context);
  if (context.isStopped()) return;
  if (auto stored = models::storedURL(out.absoluteString(), context.options().documentsDirectory)) {
    out = std::move(*stored);
  }
}

}  // namespace

void Coder<MediaBundleDTO>::decode(MediaBundleDTO& out, JSONValue value, DecodingContext& context) {
  if (!value.isObject()) return failType(context, value, "an object");
  const auto media = value.member("mediaUrl");
  if (!media) {
    return context.fail(DecodingError::Kind::keyNotFound, "required key \"mediaUrl\" is missing", "mediaUrl");
  }
  context.enterKey("mediaUrl");
  decodeMediaURL(out.mediaUrl, *media, context);
  context.leave();
  const auto thumbnail = value.member("thumbnailUrl");
  if (!thumbnail || thumbnail->isNull() || context.isStopped()) return;
  context.enterKey("thumbnailUrl");
  decodeMediaURL(out.thumbnailUrl.emplace(URL::fromFilePath("/")), *thumbnail, context);
  context.leave();
}

void Coder<MediaBundleDTO>::encode(const MediaBundleDTO& in, JSONWriter& writer) {
  writer.beginObject();
  writer.key("mediaUrl");
  writer.string(in.mediaUrl.absoluteString());
  if (in.thumbnailUrl) {
    writer.key("thumbnailUrl");
    writer.string(in.thumbnailUrl->absoluteString());
  }
  writer.endObject();
}

void Coder<BotAnswerValueDTO>::decode(BotAnswerValueDTO& out, JSONValue value, DecodingContext& context) {
  if (tryForm<MediaBundleDTO>(out, value, context) || tryForm<LocationDTO>(out, value, context) ||
      tryForm<std::vector<std::string>>(out, value, context)) {
    return;
  }
  std::string text;
  Coder<std::string>::decode(text, value, context);
  if (const auto url = models::storedURL(text, context.options().documentsDirectory)) text = url->absoluteString();
  out.form = std::move(text);
}

void Coder<BotAnswerValueDTO>::encode(const BotAnswerValueDTO& in, JSONWriter& writer) {
  encodeForm(in, writer);
}

void Coder<BotAnswerKeyValueDTO>::decode(BotAnswerKeyValueDTO& out, JSONValue value, DecodingContext& context) {
  if (tryForm<LocationDTO>(out, value, context) || tryForm<MediaBundleDTO>(out, value, context) ||
      tryForm<std::vector<KeyValue>>(out, value, context)) {
    return;
  }
  KeyValue keyValue;
  Coder<KeyValue>::decode(keyValue, value, context);
  out.form = std::move(keyValue);
}

void Coder<BotAnswerKeyValueDTO>::encode(const BotAnswerKeyValueDTO& in, JSONWriter& writer) {
  encodeForm(in, writer);
}

namespace {

constexpr std::array kAnswerFields{
    field<&BotAPIAnswerDTO::value>("value"),         field<&BotAPIAnswerDTO::keyValue>("keyValue"),
    field<&BotAPIAnswerDTO::location>("location"),   field<&BotAPIAnswerDTO::iterationId>("iterationId"),
    field<&BotAPIAnswerDTO::messageId>("messageId"), field<&BotAPIAnswerDTO::moduleId>("moduleId"),
    field<&BotAPIAnswerDTO::type>("type"),           field<&BotAPIAnswerDTO::locationType>("locationType"),
    field<&BotAPIAnswerDTO::context>("context"),     field<&BotAPIAnswerDTO::answeredAt>("answeredAt"),
    field<&BotAPIAnswerDTO::wasSynced>("wasSynced"),
};

}  // namespace

void Coder<BotAPIAnswerDTO>::decode(BotAPIAnswerDTO& out, JSONValue value, DecodingContext& context) {
  decodeFields(kAnswerFields, &out, value, context);
}

void Coder<BotAPIAnswerDTO>::encode(const BotAPIAnswerDTO& in, JSONWriter& writer) {
  encodeFields(kAnswerFields, &in, writer);
}

}  // namespace kestrom::foundation

#include "Core/Services/Cache/DefaultJSONCache.hpp"

#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrom::services {

using foundation::FileError;
using foundation::JSONDocument;
using foundation::URL;
using models::BotAPIAnswerDTO;
using models::KestromEventDTO;
using reactive::Nothing;

namespace {

constexpr auto unknown() {
  return std::unexpected(DatabaseError::unknown);
}

}  // namespace

JSONCache::Done DefaultJSONCache::save(const std::vector<BotAPIAnswerDTO>& answers, const CacheFilename& file) {
  return reactive::finished(encodeAndWrite(answers, file));
}

JSONCache::Done DefaultJSONCache::save(const std::vector<KestromEventDTO>& events, const CacheFilename& file) {
  return reactive::finished(encodeAndWrite(events, file));
}

JSONCache::Loaded<BotAPIAnswerDTO> DefaultJSONCache::loadAnswers(const CacheFilename& file) const {
  return reactive::finished(read<BotAPIAnswerDTO>(file));
}

JSONCache::Loaded<KestromEventDTO> DefaultJSONCache::loadEvents(const CacheFilename& file) const {
  return reactive::finished(read<KestromEventDTO>(file));
}

JSONCache::Done DefaultJSONCache::upsert(const BotAPIAnswerDTO& answer, const CacheFilename& file) {
  return reactive::finished(upsertNow(answer, file));
}

void DefaultJSONCache::remove(const CacheFilename& file) {
  const auto url = _fileManager->documentsFileURL(file.name(), false);
  // A file that cannot be removed now is replaced or removed another time.
  if (url && _fileManager->fileExists(url->path())) static_cast<void>(_fileManager->removeItem(*url));
}

template <class Element>
DefaultJSONCache::List<Element> DefaultJSONCache::read(const CacheFilename& file) const {
  const auto url = _fileManager->documentsFileURL(file.name(), true);
  if (!url) return unknown();
  const auto bytes = _fileManager->readFile(*url, JSONDocument::kMaximumSize);
  if (!bytes) return unknown();
  auto list = foundation::decodeJSON<std::vector<Element>>(foundation::textOf(*bytes), _decoder);
  if (!list) return unknown();
  return std::move(*list);
}

template <class Element>
DefaultJSONCache::Outcome DefaultJSONCache::encodeAndWrite(const std::vector<Element>& list,
                                                           const CacheFilename& file) {
  const auto url = _fileManager->documentsFileURL(file.name(), true);
  if (!url) return unknown();
  foundation::JSONWriter writer(_encoder);
  foundation::Coder<std::vector<Element>>::encode(list, writer);
  if (!writer.isFaithful()) return unknown();
  return write(*url, writer.text());
}

DefaultJSONCache::Outcome DefaultJSONCache::upsertNow(const BotAPIAnswerDTO& answer, const CacheFilename& file) {
  const auto url = _fileManager->documentsFileURL(file.name(), true);
  if (!url) return unknown();
  const auto bytes = _fileManager->readFile(*url, JSONDocument::kMaximumSize);
  if (!bytes && bytes.error().kind != FileError::Kind::notFound) return unknown();
  const std::string_view text = bytes ? foundation::textOf(*bytes) : std::string_view();
  if (text != _answers.text()) {
    const auto list = foundation::decodeJSON<std::vector<BotAPIAnswerDTO>>(text, _decoder);
    auto kept = list ? Answers::of(*list, _encoder) : Answers();
    if (!kept) return unknown();
    _answers = std::move(*kept);
  }
  if (!_answers.upsert(answer, _encoder)) return unknown();
  return write(*url, _answers.text());
}

DefaultJSONCache::Outcome DefaultJSONCache::write(const URL& url, std::string_view text) {
  // What could not be read again would cost the whole list at the next change.
  if (text.size() > JSONDocument::kMaximumSize) return unknown();
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  if (!_fileManager->writeFile(url, std::span(bytes, text.size()))) return unknown();
  return Nothing{};
}

}  // namespace kestrom::services

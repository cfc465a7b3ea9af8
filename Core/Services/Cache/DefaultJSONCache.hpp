#pragma once

#include "Core/Services/Cache/CachedListText.hpp"
#include "Core/Services/Cache/FileManagerAdapter.hpp"
#include "Core/Services/Cache/JSONCache.hpp"

#include <expected>
#include <memory>
#include <string>
#include <utility>

namespace kestrom::services {

/// Keeps each list as one JSON array in the documents directory.
class DefaultJSONCache final : public JSONCache {
 public:
  using Decoder = foundation::DecodingOptions;
  using Encoder = foundation::DateStrategy;

  DefaultJSONCache(std::shared_ptr<FileManagerAdapter> fileManager, Decoder decoder, Encoder encoder)
      : _fileManager(std::move(fileManager)), _decoder(std::move(decoder)), _encoder(encoder) {}

  Done save(const std::vector<models::BotAPIAnswerDTO>& answers, const CacheFilename& file) override;
  Done save(const std::vector<models::KestromEventDTO>& events, const CacheFilename& file) override;
  Done upsert(const models::BotAPIAnswerDTO& answer, const CacheFilename& file) override;
  void remove(const CacheFilename& file) override;

 private:
  using Answers = CachedListText<models::BotAPIAnswerDTO>;
  using Outcome = std::expected<reactive::Nothing, DatabaseError>;
  template <class Element>
  using List = std::expected<std::vector<Element>, DatabaseError>;

  Loaded<models::BotAPIAnswerDTO> loadAnswers(const CacheFilename& file) const override;
  Loaded<models::KestromEventDTO> loadEvents(const CacheFilename& file) const override;

  template <class Element>
  List<Element> read(const CacheFilename& file) const;
  template <class Element>
  Outcome encodeAndWrite(const std::vector<Element>& list, const CacheFilename& file);
  Outcome upsertNow(const models::BotAPIAnswerDTO& answer, const CacheFilename& file);
  Outcome write(const foundation::URL& url, std::string_view text);

  std::shared_ptr<FileManagerAdapter> _fileManager;
  Decoder _decoder;
  Encoder _encoder;
  /// What the last upsert left in the file. As long as the file holds just that, its elements need not be decoded and
  /// encoded again to exchange one of them.
  Answers _answers;
};

}  // namespace kestrom::services

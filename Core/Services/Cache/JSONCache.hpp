#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/KestromEventDTO.hpp"
#include "Core/Services/Cache/CacheFilename.hpp"
#include "Core/Services/Cache/DatabaseError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <concepts>
#include <vector>

namespace kestrom::services {

/// Small lists on the device, a whole list a file. All is done when a call returns, on the caller's thread; the
/// publisher only tells how it went: one value or a failure, inside `sink`. There is no lock: calls for one file are to
/// come from one thread or queue, or one of two changes may be lost.
class JSONCache {
 public:
  using Done = reactive::Publisher<reactive::Nothing, DatabaseError>;
  template <class Element>
  using Loaded = reactive::Publisher<std::vector<Element>, DatabaseError>;

  virtual ~JSONCache() = default;

  /// Replaces the whole content of a file.
  virtual Done save(const std::vector<models::BotAPIAnswerDTO>& answers, const CacheFilename& file) = 0;
  virtual Done save(const std::vector<models::KestromEventDTO>& events, const CacheFilename& file) = 0;

  /// The list that a file holds. A missing file and a damaged one are failures, and the file stays as it is.
  template <class Element>
  Loaded<Element> load(const CacheFilename& file) const {
    if constexpr (std::same_as<Element, models::BotAPIAnswerDTO>) {
      return loadAnswers(file);
    } else {
      static_assert(std::same_as<Element, models::KestromEventDTO>);
      return loadEvents(file);
    }
  }

  /// Puts `answer` in the place of the last one with its cache key, or behind all where there is none. A missing or
  /// damaged file counts as an empty list. One that is there and cannot be read is a failure: what it holds may still
  /// be good.
  virtual Done upsert(const models::BotAPIAnswerDTO& answer, const CacheFilename& file) = 0;

  /// Removes a file, if there is one; never fails.
  virtual void remove(const CacheFilename& file) = 0;

 protected:
  virtual Loaded<models::BotAPIAnswerDTO> loadAnswers(const CacheFilename& file) const = 0;
  virtual Loaded<models::KestromEventDTO> loadEvents(const CacheFilename& file) const = 0;
};

}  // namespace kestrom::services

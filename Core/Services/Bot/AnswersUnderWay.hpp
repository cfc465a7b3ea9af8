#pragma once

#include "Core/Services/Cache/CacheFilename.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace kestrom::services {

/// The answers whose request is out, by case and cache key, so that nobody sends one of them a second time and no
/// outcome touches what came later. One for all answer services of a process. Main queue only.
class AnswersUnderWay {
  struct Question {
    /// Answers of it that are under way.
    int count = 0;
    /// The number of the one that was handed over last; that one may have ended already.
    std::uint64_t newest = 0;
  };
  /// The name of the case's file and the cache key.
  using Key = std::pair<std::string, std::string>;
  using Questions = std::map<Key, Question>;

 public:
  /// One answer under way, from its making until `end` or its destruction. May outlive the register.
  class Answer {
   public:
    Answer(std::shared_ptr<Questions> questions, Key key, std::uint64_t number);
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { end(); }

    /// True when another answer of the same question was handed over after this one, as long as one of both is under
    /// way.
    bool isOvertaken() const;

    void end();

   private:
    std::shared_ptr<Questions> _questions;
    Key _key;
    std::uint64_t _number;
    bool _hasEnded = false;
  };

  std::shared_ptr<Answer> begin(const CacheFilename& file, std::string cacheKey);

  bool contains(const CacheFilename& file, const std::string& cacheKey) const {
    return _questions->contains({file.name(), cacheKey});
  }

 private:
  std::shared_ptr<Questions> _questions = std::make_shared<Questions>();
  std::uint64_t _lastNumber = 0;
};

}  // namespace kestrom::services

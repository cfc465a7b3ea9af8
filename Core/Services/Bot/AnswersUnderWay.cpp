#include "Core/Services/Bot/AnswersUnderWay.hpp"

namespace kestrom::services {

AnswersUnderWay::Answer::Answer(std::shared_ptr<Questions> questions, Key key, std::uint64_t number)
    : _questions(std::move(questions)), _key(std::move(key)), _number(number) {
  Question& question = (*_questions)[_key];
  ++question.count;
  question.newest = number;
}

bool AnswersUnderWay::Answer::isOvertaken() const {
  const auto question = _questions->find(_key);
  return question != _questions->end() && question->second.newest != _number;
}

void AnswersUnderWay::Answer::end() {
  if (std::exchange(_hasEnded, true)) return;
  const auto question = _questions->find(_key);
  if (--question->second.count == 0) _questions->erase(question);
}

std::shared_ptr<AnswersUnderWay::Answer> AnswersUnderWay::begin(const CacheFilename& file, std::string cacheKey) {
  return std::make_shared<Answer>(_questions, Key(file.name(), std::move(cacheKey)), ++_lastNumber);
}

}  // namespace kestrom::services

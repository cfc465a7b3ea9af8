#pragma once

#include "Core/Services/Bot/AnswerService.hpp"
#include "Core/Services/Bot/AnswersUnderWay.hpp"
#include "Core/Services/Cache/JSONCache.hpp"
#include "Core/Services/Networking/REST/RESTService.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <memory>
#include <utility>

namespace kestrom::services {

/// Sends answers to the server and keeps each in the case's file, with a mark that tells whether the server has it.
class DefaultAnswerService final : public AnswerService {
 public:
  struct Parts {
    std::shared_ptr<const RESTService> restService;
    std::shared_ptr<JSONCache> cache;
    /// The same for all services that send answers of one case.
    std::shared_ptr<AnswersUnderWay> underWay;
    /// Onto which the addresses of local files in answers are moved.
    foundation::URL documentsDirectory;
  };

  explicit DefaultAnswerService(Parts parts) : _parts(std::move(parts)) {}

  reactive::Publisher<bool, AnyError> submit(const models::BotAnswer& answer,
                                             const models::KestromObjectDetails& kestrom) override;
  reactive::Publisher<std::vector<models::BotAPIAnswerDTO>, reactive::Never> answersHistory(
      const models::KestromObjectDetails& kestrom) override;
  reactive::Publisher<std::vector<models::BotAnswer>, DatabaseError> unsyncedAnswers(
      const models::KestromObjectDetails& kestrom) override;
  void clearCachedAnswers(const models::KestromObjectDetails& kestrom) override;

 private:
  Parts _parts;
};

}  // namespace kestrom::services

#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/BotAnswer.hpp"
#include "Core/Models/KestromObjectDetails.hpp"
#include "Core/Services/Cache/DatabaseError.hpp"
#include "Core/Services/Networking/REST/AnyError.hpp"
#include "Platform/Reactive/Publisher.hpp"

#include <vector>

namespace kestrom::services {

/// The one road by which an answer of the user leaves the chat: to the server, or into the case's file when that fails.
/// Main queue only.
class AnswerService {
 public:
  virtual ~AnswerService() = default;

  /// True when the server took the answer, false when it is kept for later; a failure only when it could not be kept.
  virtual reactive::Publisher<bool, AnyError> submit(const models::BotAnswer& answer,
                                                     const models::KestromObjectDetails& kestrom) = 0;

  /// The record of the case, the server's or the device's, whichever is to be believed; at each subscription anew.
  virtual reactive::Publisher<std::vector<models::BotAPIAnswerDTO>, reactive::Never> answersHistory(
      const models::KestromObjectDetails& kestrom) = 0;

  /// What the server does not have yet, in the order of the file.
  virtual reactive::Publisher<std::vector<models::BotAnswer>, DatabaseError> unsyncedAnswers(
      const models::KestromObjectDetails& kestrom) = 0;

  /// Forgets the device's record of the case.
  virtual void clearCachedAnswers(const models::KestromObjectDetails& kestrom) = 0;
};

}  // namespace kestrom::services

#include "Core/Services/Bot/DefaultAnswerService.hpp"

#include "Core/Models/AnswerConversion.hpp"
#include "Core/SDK/Logging.hpp"
#include "Core/Services/Cache/CacheUnique.hpp"
#include "Core/Services/Networking/REST/AnswerRESTRequest.hpp"
#include "Platform/Reactive/Combining.hpp"
#include "Platform/Reactive/Sources.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::services {

using models::AnswersHistoryResponse;
using models::BotAnswer;
using models::BotAPIAnswerDTO;
using models::KestromObjectDetails;
using reactive::Never;
using reactive::Nothing;
using reactive::Publisher;

namespace {

using Answers = std::vector<BotAPIAnswerDTO>;

CacheFilename fileOf(const KestromObjectDetails& kestrom) {
  return CacheFilename::answers(kestrom.organizationId, kestrom.id);
}

/// Whether a file of the device has to be uploaded before the server has the answer. A bundle without a picture is
/// never uploaded: it is delivered as it stands.
bool waitsForUpload(const BotAnswer& answer) {
  if (const auto* one = std::get_if<BotAnswer::Value::Url>(&answer.value.form)) return one->url.isFileURL();
  const auto* bundle = std::get_if<BotAnswer::Value::MediaBundle>(&answer.value.form);
  return bundle && bundle->thumbnailUrl && (bundle->mediaUrl.isFileURL() || bundle->thumbnailUrl->isFileURL());
}

/// One answer on its road.
class Submission {
 public:
  Submission(const BotAnswer& answer, const KestromObjectDetails& kestrom, std::shared_ptr<JSONCache> cache,
             AnswersUnderWay& underWay)
      : _answer(models::apiAnswer(answer, std::nullopt)),
        _waitsForUpload(waitsForUpload(answer)),
        _file(fileOf(kestrom)),
        _cache(std::move(cache)),
        _underWay(underWay.begin(_file, cacheKey(_answer))) {}

  /// As it is sent, without the mark.
  const BotAPIAnswerDTO& answer() const { return _answer; }

  /// Puts the answer into the file. What was overtaken leaves the entry to the newer answer.
  Publisher<Nothing, AnyError> keep(bool wasDelivered) const {
    if (_underWay->isOvertaken()) return reactive::just<AnyError>(Nothing{});
    BotAPIAnswerDTO kept = _answer;
    kept.wasSynced = wasDelivered && !_waitsForUpload;
    return _cache->upsert(kept, _file).mapError([](DatabaseError error) { return AnyError(error); });
  }

  void end() const { _underWay->end(); }

 private:
  BotAPIAnswerDTO _answer;
  bool _waitsForUpload;
  CacheFilename _file;
  std::shared_ptr<JSONCache> _cache;
  std::shared_ptr<AnswersUnderWay::Answer> _underWay;
};

double newest(const Answers& answers) {
  double seconds = answers.front().answeredAt.secondsSinceReferenceDate;
  for (const BotAPIAnswerDTO& answer : answers)
    seconds = std::max(seconds, answer.answeredAt.secondsSinceReferenceDate);
  return seconds;
}

/// Whether the server's list is to be believed. Where nothing speaks for it the device's is, which has what could not
/// be sent.
bool serverKnowsMore(const Answers& server, const Answers& device) {
  if (server.empty()) return false;
  if (device.empty()) return true;
  return newest(server) > newest(device) || server.size() > device.size();
}

/// Both lists as they are now, of which one is believed.
Publisher<Answers, Never> history(const DefaultAnswerService::Parts& parts, const KestromObjectDetails& kestrom) {
  auto onServer = parts.restService
                      ->decoded<AnswersHistoryResponse>(AnswerRESTRequest::getHistory(kestrom.id),
                                                        answersDecoder(parts.documentsDirectory))
                      .map([](AnswersHistoryResponse&& response) { return std::move(response.answers); })
                      .replaceError({});
  auto onDevice = parts.cache->load<BotAPIAnswerDTO>(fileOf(kestrom)).replaceError({});
  return reactive::combineLatest(std::move(onServer), std::move(onDevice)).map([](std::pair<Answers, Answers>&& both) {
    auto& [server, device] = both;
    return std::move(serverKnowsMore(server, device) ? server : device);
  });
}

}  // namespace

Publisher<bool, AnyError> DefaultAnswerService::submit(const BotAnswer& answer, const KestromObjectDetails& kestrom) {
  const auto submission = std::make_shared<const Submission>(answer, kestrom, _parts.cache, *_parts.underWay);
  // From here on nothing loses the answer, not the end of the process either. If it cannot be written now it may still
  // be delivered.
  static_cast<void>(submission->keep(false));
  return _parts.restService->perform(AnswerRESTRequest::submit(submission->answer(), kestrom.id), defaultDecoder())
      .mapError([](RESTError&& error) { return AnyError(std::move(error)); })
      .flatMap([submission](Nothing) { return submission->keep(true).map([](Nothing) { return true; }); })
      .catchError([submission](AnyError&& error) {
        session::logInfo("Unable to submit an answer, saving it to a cache");
        session::logError(error.description(), "submit(answer:kestrom:)");
        return submission->keep(false).map([](Nothing) { return false; });
      })
      .handleEvents({.onOutput = [submission](bool) { submission->end(); },
                     .onCompletion = [submission](const reactive::Completion<AnyError>&) { submission->end(); },
                     .onCancel = [submission] { submission->end(); }});
}

Publisher<Answers, Never> DefaultAnswerService::answersHistory(const KestromObjectDetails& kestrom) {
  return reactive::deferred([parts = _parts, kestrom] { return history(parts, kestrom); });
}

Publisher<std::vector<BotAnswer>, DatabaseError> DefaultAnswerService::unsyncedAnswers(
    const KestromObjectDetails& kestrom) {
  return _parts.cache->load<BotAPIAnswerDTO>(fileOf(kestrom))
      .replaceError({})
      .map([documentsDirectory = _parts.documentsDirectory](Answers&& answers) {
        std::vector<BotAnswer> unsynced;
        for (const BotAPIAnswerDTO& answer : answers) {
          if (answer.wasSynced != false) continue;
          if (auto chatAnswer = models::botAnswer(answer, documentsDirectory))
            unsynced.push_back(std::move(*chatAnswer));
        }
        return unsynced;
      })
      .setFailureType<DatabaseError>();
}

void DefaultAnswerService::clearCachedAnswers(const KestromObjectDetails& kestrom) {
  _parts.cache->remove(fileOf(kestrom));
}

}  // namespace kestrom::services

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::sandbox {

/// A case as it stands now.
struct CaseRecord {
  std::string id;
  std::string organizationId;
  std::string botId;
  std::string status;
  /// What the status check tells.
  std::string expiration;
  /// The case's JSON; its "status" is the present one.
  std::string body;
};

/// What a case is signed in to with. Blanks and the case of letters do not count.
struct Credentials {
  std::string_view zipCode;
  std::string_view accessCode;
};

/// Names one question of a case and the pass in which it was asked.
struct AnswerKey {
  std::string_view messageId;
  std::string_view moduleId;
  std::int64_t iterationId = 0;
};

struct MediaRecord {
  std::string name;
  std::string contentType;
};

/// All that the server keeps but the bytes of media: one SQLite file. Any thread; each operation happens whole.
/// Throws DatabaseFault.
class SandboxStore {
 public:
  static constexpr std::string_view kInvited = "invited";
  static constexpr std::string_view kInProgress = "in_progress";

  explicit SandboxStore(const std::filesystem::path& file);
  ~SandboxStore();

  /// These three leave alone what is there already.
  void addCase(const CaseRecord& record, const Credentials& credentials);
  void addBot(std::string_view id, std::string_view sequence);
  void addBrand(std::string_view organizationId, std::string_view body);

  std::optional<CaseRecord> findCase(const Credentials& credentials);
  std::optional<CaseRecord> findCase(std::string_view id);
  std::optional<std::string> findBot(std::string_view id);
  std::optional<std::string> findBrand(std::string_view organizationId);

  /// A new bearer token of a case.
  std::string issueToken(std::string_view caseId);
  /// The case that a token was given out for.
  std::optional<std::string> caseOfToken(std::string_view token);

  /// Keeps an answer, in the place of an earlier one with the same key. The first one of a case that was only invited
  /// begins its work.
  void saveAnswer(std::string_view caseId, const AnswerKey& key, std::string_view body);
  /// {"answers": […]}, in the order in which their keys arrived first.
  std::string history(std::string_view caseId);
  void setStatus(std::string_view caseId, std::string_view status);

  /// Each gets the JSON as it came.
  void addEvents(std::string_view caseId, std::string_view body);
  void addConsent(std::string_view caseId, std::string_view body);
  void addUserProfile(std::string_view caseId, std::string_view body);

  void addMedia(std::string_view caseId, const MediaRecord& record);
  std::optional<MediaRecord> findMedia(std::string_view name);

 private:
  struct Statements;

  void replaceStatus(std::string_view caseId, std::string_view body, std::string_view status);

  std::mutex _mutex;
  std::unique_ptr<Statements> _statements;
};

}  // namespace kestrom::sandbox

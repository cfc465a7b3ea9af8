#include "Apps/sandbox/SandboxStore.hpp"

#include "Apps/sandbox/Database.hpp"
#include "Platform/Foundation/JSONDocument.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <sys/random.h>

#include <array>

namespace kestrom::sandbox {

namespace {

constexpr const char* kSchema = R"(
CREATE TABLE IF NOT EXISTS cases(id TEXT PRIMARY KEY, organization TEXT NOT NULL, bot TEXT NOT NULL,
  status TEXT NOT NULL, expiration TEXT NOT NULL, zip_code TEXT NOT NULL, access_code TEXT NOT NULL,
  body TEXT NOT NULL, UNIQUE(zip_code, access_code)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS bots(id TEXT PRIMARY KEY, sequence TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS brands(organization TEXT PRIMARY KEY, body TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS tokens(token TEXT PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  issued TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS answers(number INTEGER PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  message_id TEXT NOT NULL, module_id TEXT NOT NULL, iteration_id INTEGER NOT NULL, body TEXT NOT NULL,
  arrivals INTEGER NOT NULL DEFAULT 1, UNIQUE(case_id, message_id, module_id, iteration_id));
CREATE TABLE IF NOT EXISTS events(number INTEGER PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  body TEXT NOT NULL, arrived TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP);
CREATE TABLE IF NOT EXISTS consents(number INTEGER PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  body TEXT NOT NULL, arrived TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP);
CREATE TABLE IF NOT EXISTS user_profiles(number INTEGER PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  body TEXT NOT NULL, arrived TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP);
CREATE TABLE IF NOT EXISTS media(name TEXT PRIMARY KEY, case_id TEXT NOT NULL REFERENCES cases(id),
  content_type TEXT NOT NULL, arrived TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP) WITHOUT ROWID;
)";

/// In the order of `CaseRecord`; a macro, so that it can stand within statements.
#define CASE_COLUMNS "id, organization, bot, status, expiration, body"

/// An open database whose tables are there.
struct Tables {
  explicit Tables(const std::filesystem::path& file) : database(file) { database.execute(kSchema); }
  Database database;
};

CaseRecord caseRecord(const Statement::Run& row) {
  return {std::string(row.text(0)), std::string(row.text(1)), std::string(row.text(2)),
          std::string(row.text(3)), std::string(row.text(4)), std::string(row.text(5))};
}

/// A code as it is compared: the screens show it in groups and send it without their blanks.
std::string plainCode(std::string_view code) {
  std::string plain;
  for (const char c : code) {
    if (c != ' ') plain += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return plain;
}

std::string randomToken() {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::array<unsigned char, 32> bytes;
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    throw DatabaseFault("no random numbers");
  std::string token;
  for (const unsigned char byte : bytes) {
    token += kDigits[byte >> 4];
    token += kDigits[byte & 15];
  }
  return token;
}

/// The JSON of a case with another status, everything else as it was.
std::string withStatus(std::string_view body, std::string_view status) {
  const auto document = foundation::JSONDocument::parse(body);
  if (!document || !document->root().isObject()) throw DatabaseFault("database: a case is no JSON object");
  foundation::JSONWriter writer;
  writer.beginObject();
  for (auto it = document->root().begin(); it != document->root().end(); ++it) {
    const std::string_view key = (*it).string();
    ++it;
    writer.key(key);
    if (key == "status") {
      writer.string(status);
    } else {
      writer.value(*it);
    }
  }
  writer.endObject();
  return std::move(writer).text();
}

}  // namespace

struct SandboxStore::Statements {
  explicit Statements(const std::filesystem::path& file) : tables(file) {}

  Tables tables;
  Database& database = tables.database;
  Statement addCase{database, "INSERT INTO cases(" CASE_COLUMNS
                              ", zip_code, access_code) VALUES(?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT(id) DO NOTHING"};
  Statement addBot{database, "INSERT OR IGNORE INTO bots(id, sequence) VALUES(?, ?)"};
  Statement addBrand{database, "INSERT OR IGNORE INTO brands(organization, body) VALUES(?, ?)"};
  Statement caseByCode{database, "SELECT " CASE_COLUMNS " FROM cases WHERE zip_code = ? AND access_code = ?"};
  Statement caseById{database, "SELECT " CASE_COLUMNS " FROM cases WHERE id = ?"};
  Statement bot{database, "SELECT sequence FROM bots WHERE id = ?"};
  Statement brand{database, "SELECT body FROM brands WHERE organization = ?"};
  Statement addToken{database, "INSERT INTO tokens(token, case_id) VALUES(?, ?)"};
  Statement token{database, "SELECT case_id FROM tokens WHERE token = ?"};
  Statement saveAnswer{database,
                       "INSERT INTO answers(case_id, message_id, module_id, iteration_id, body) VALUES(?, ?, ?, ?, ?) "
                       "ON CONFLICT DO UPDATE SET body = excluded.body, arrivals = arrivals + 1"};
  Statement answers{database, "SELECT body FROM answers WHERE case_id = ? ORDER BY number"};
  Statement setStatus{database, "UPDATE cases SET status = ?, body = ? WHERE id = ?"};
  Statement addEvents{database, "INSERT INTO events(case_id, body) VALUES(?, ?)"};
  Statement addConsent{database, "INSERT INTO consents(case_id, body) VALUES(?, ?)"};
  Statement addUserProfile{database, "INSERT INTO user_profiles(case_id, body) VALUES(?, ?)"};
  Statement addMedia{database, "INSERT INTO media(name, case_id, content_type) VALUES(?, ?, ?)"};
  Statement media{database, "SELECT name, content_type FROM media WHERE name = ?"};
};

SandboxStore::SandboxStore(const std::filesystem::path& file) : _statements(std::make_unique<Statements>(file)) {}

SandboxStore::~SandboxStore() = default;

void SandboxStore::addCase(const CaseRecord& record, const Credentials& credentials) {
  const std::lock_guard lock(_mutex);
  _statements->addCase.run(record.id, record.organizationId, record.botId, record.status, record.expiration,
                           record.body, plainCode(credentials.zipCode), plainCode(credentials.accessCode));
}

void SandboxStore::addBot(std::string_view id, std::string_view sequence) {
  const std::lock_guard lock(_mutex);
  _statements->addBot.run(id, sequence);
}

void SandboxStore::addBrand(std::string_view organizationId, std::string_view body) {
  const std::lock_guard lock(_mutex);
  _statements->addBrand.run(organizationId, body);
}

std::optional<CaseRecord> SandboxStore::findCase(const Credentials& credentials) {
  const std::string zipCode = plainCode(credentials.zipCode);
  const std::string accessCode = plainCode(credentials.accessCode);
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->caseByCode, zipCode, accessCode);
  if (!row.next()) return std::nullopt;
  return caseRecord(row);
}

std::optional<CaseRecord> SandboxStore::findCase(std::string_view id) {
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->caseById, id);
  if (!row.next()) return std::nullopt;
  return caseRecord(row);
}

std::optional<std::string> SandboxStore::findBot(std::string_view id) {
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->bot, id);
  if (!row.next()) return std::nullopt;
  return std::string(row.text(0));
}

std::optional<std::string> SandboxStore::findBrand(std::string_view organizationId) {
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->brand, organizationId);
  if (!row.next()) return std::nullopt;
  return std::string(row.text(0));
}

std::string SandboxStore::issueToken(std::string_view caseId) {
  std::string token = randomToken();
  const std::lock_guard lock(_mutex);
  _statements->addToken.run(token, caseId);
  return token;
}

std::optional<std::string> SandboxStore::caseOfToken(std::string_view token) {
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->token, token);
  if (!row.next()) return std::nullopt;
  return std::string(row.text(0));
}

void SandboxStore::saveAnswer(std::string_view caseId, const AnswerKey& key, std::string_view body) {
  const std::lock_guard lock(_mutex);
  Transaction transaction(_statements->database);
  _statements->saveAnswer.run(caseId, key.messageId, key.moduleId, key.iterationId, body);
  std::optional<CaseRecord> invited;
  {
    Statement::Run row(_statements->caseById, caseId);
    if (row.next() && row.text(3) == kInvited) invited = caseRecord(row);
  }
  if (invited) replaceStatus(caseId, invited->body, kInProgress);
  transaction.commit();
}

std::string SandboxStore::history(std::string_view caseId) {
  const std::lock_guard lock(_mutex);
  std::string text = R"({"answers":[)";
  Statement::Run row(_statements->answers, caseId);
  for (bool isFirst = true; row.next(); isFirst = false) {
    if (!isFirst) text += ',';
    text += row.text(0);
  }
  return text += "]}";
}

void SandboxStore::setStatus(std::string_view caseId, std::string_view status) {
  const std::lock_guard lock(_mutex);
  std::string body;
  {
    Statement::Run row(_statements->caseById, caseId);
    if (!row.next()) return;
    body = row.text(5);
  }
  replaceStatus(caseId, body, status);
}

void SandboxStore::replaceStatus(std::string_view caseId, std::string_view body, std::string_view status) {
  _statements->setStatus.run(status, withStatus(body, status), caseId);
}

void SandboxStore::addEvents(std::string_view caseId, std::string_view body) {
  const std::lock_guard lock(_mutex);
  _statements->addEvents.run(caseId, body);
}

void SandboxStore::addConsent(std::string_view caseId, std::string_view body) {
  const std::lock_guard lock(_mutex);
  _statements->addConsent.run(caseId, body);
}

void SandboxStore::addUserProfile(std::string_view caseId, std::string_view body) {
  const std::lock_guard lock(_mutex);
  _statements->addUserProfile.run(caseId, body);
}

void SandboxStore::addMedia(std::string_view caseId, const MediaRecord& record) {
  const std::lock_guard lock(_mutex);
  _statements->addMedia.run(record.name, caseId, record.contentType);
}

std::optional<MediaRecord> SandboxStore::findMedia(std::string_view name) {
  const std::lock_guard lock(_mutex);
  Statement::Run row(_statements->media, name);
  if (!row.next()) return std::nullopt;
  return MediaRecord{std::string(row.text(0)), std::string(row.text(1))};
}

}  // namespace kestrom::sandbox

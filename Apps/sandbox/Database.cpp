#include "Apps/sandbox/Database.hpp"

#include <sqlite3.h>

namespace kestrom::sandbox {

namespace {

[[noreturn]] void fail(sqlite3* connection) {
  throw DatabaseFault(std::string("database: ") + sqlite3_errmsg(connection));
}

}  // namespace

Database::Database(const std::filesystem::path& file) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (sqlite3_open_v2(file.c_str(), &_connection, flags, nullptr) != SQLITE_OK) {
    const std::string why = _connection ? sqlite3_errmsg(_connection) : "out of memory";
    sqlite3_close(_connection);
    throw DatabaseFault(file.string() + ": " + why);
  }
  try {
    sqlite3_busy_timeout(_connection, 5000);
    // What was acknowledged is on the disk: a client forgets what a server has taken.
    execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON");
  } catch (const DatabaseFault&) {
    sqlite3_close(_connection);
    throw;
  }
}

Database::~Database() {
  sqlite3_close(_connection);
}

void Database::execute(const char* statements) {
  if (sqlite3_exec(_connection, statements, nullptr, nullptr, nullptr) != SQLITE_OK) fail(_connection);
}

Statement::Statement(Database& database, const char* text) {
  if (sqlite3_prepare_v3(database.get(), text, -1, SQLITE_PREPARE_PERSISTENT, &_statement, nullptr) != SQLITE_OK)
    fail(database.get());
}

Statement::~Statement() {
  sqlite3_finalize(_statement);
}

Statement::Run::~Run() {
  sqlite3_reset(_statement._statement);
  sqlite3_clear_bindings(_statement._statement);
}

bool Statement::Run::next() {
  const int result = sqlite3_step(_statement._statement);
  if (result != SQLITE_ROW && result != SQLITE_DONE) fail(sqlite3_db_handle(_statement._statement));
  return result == SQLITE_ROW;
}

std::string_view Statement::Run::text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(_statement._statement, column));
  if (!bytes) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(_statement._statement, column))};
}

std::int64_t Statement::Run::integer(int column) const {
  return sqlite3_column_int64(_statement._statement, column);
}

void Statement::Run::bind(int index, std::string_view text) {
  // A view without bytes would be bound as NULL.
  const char* bytes = text.data() ? text.data() : "";
  if (sqlite3_bind_text64(_statement._statement, index, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8) != SQLITE_OK)
    fail(sqlite3_db_handle(_statement._statement));
}

void Statement::Run::bind(int index, std::int64_t value) {
  if (sqlite3_bind_int64(_statement._statement, index, value) != SQLITE_OK)
    fail(sqlite3_db_handle(_statement._statement));
}

Transaction::~Transaction() {
  if (_isOpen) sqlite3_exec(_database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  _database.execute("COMMIT");
  _isOpen = false;
}

}  // namespace kestrom::sandbox

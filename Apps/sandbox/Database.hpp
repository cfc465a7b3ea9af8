#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kestrom::sandbox {

/// The database does not do what it should: a full disk, a damaged file. Nothing that a request can bring about by what
/// it says, so that it is caught in one place and told as the server's failure.
class DatabaseFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One connection to a SQLite file. For one thread at a time.
class Database {
 public:
  explicit Database(const std::filesystem::path& file);
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database();

  /// Statements without results, separated by semicolons.
  void execute(const char* statements);

  sqlite3* get() const { return _connection; }

 private:
  sqlite3* _connection = nullptr;
};

/// A statement that is prepared once and run many times; it may outlive no run's texts, and not its database.
class Statement {
 public:
  Statement(Database& database, const char* text);
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  /// One run: parameters in their order, rows by `next`; the end of its life makes the statement ready again.
  class Run {
   public:
    template <class... Parameters>
    explicit Run(Statement& statement, const Parameters&... parameters) : _statement(statement) {
      int index = 0;
      (bind(++index, parameters), ...);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    /// Goes to the next row; false when there is none.
    bool next();
    std::string_view text(int column) const;
    std::int64_t integer(int column) const;

   private:
    void bind(int index, std::string_view text);
    void bind(int index, std::int64_t value);

    Statement& _statement;
  };

  /// Runs it for what it does.
  template <class... Parameters>
  void run(const Parameters&... parameters) {
    Run(*this, parameters...).next();
  }

 private:
  sqlite3_stmt* _statement = nullptr;
};

/// Everything done in its life happens whole or, without `commit`, not at all.
class Transaction {
 public:
  explicit Transaction(Database& database) : _database(database) { _database.execute("BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  void commit();

 private:
  Database& _database;
  bool _isOpen = true;
};

}  // namespace kestrom::sandbox

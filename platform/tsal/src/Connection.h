#pragma once

#include "EventStatements.h"

#include <TSAL/Error.h>

#include <soci/soci.h>

#include <chrono>
#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// The database could not be opened or reached at all, as opposed to one that is there and cannot be used.
class NotReachable : public TsError {
 public:
  using TsError::TsError;
};

/// One connection to a store, used by one operation at a time. Opening makes the database and its tables where they are
/// not there yet, and brings up a store of an earlier version.
class Connection {
 public:
  /// @param database absolute path of the database file.
  /// @throws NotReachable; TsError when the file is no store that this code can record in.
  explicit Connection(const std::string& database);

  soci::session& Sql() { return sql; }
  /// The statements of the most frequent operation, prepared once.
  EventStatements& Events();
  const std::string& Database() const { return database; }

  /// Raises a TsError that names the database, for what the database layer raised.
  [[noreturn]] static void Fail(const std::string& database, const soci::soci_error& reason);

  /// Whether the file was removed or replaced since it was opened, so that nobody would find what is written now.
  bool HasMoved();

 private:
  void Configure();
  /// The version of the store's schema; 0 where there are no tables yet.
  /// @throws TsError for a database of another program, or with a schema of a later version.
  int StoredVersion();
  void BringUp();

  std::string database;
  std::chrono::microseconds waited{};  // for other writers, since the last time that none was in the way
  soci::session sql;
  std::optional<EventStatements> events;
};

/// A write, all or nothing: rolls back unless committed. Begins as a writer, since a reader that turns into one halfway
/// fails at once when another has written meanwhile, however long it would wait.
class Transaction {
 public:
  explicit Transaction(soci::session& sql);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Gives up an error of the rollback: the connection is closed after a failure anyway.
  ~Transaction();

  void Commit();

 private:
  soci::session& sql;
  bool open = true;
};

/// The number of the row that this connection inserted last.
long long LastRow(soci::session& sql);

}  // namespace Quor::TolvaServices::Local

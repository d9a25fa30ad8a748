#pragma once

#include "Settings.h"

#include <TSAL/Error.h>
#include <TSAL/Types.h>

#include <soci/soci.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Quor::TolvaServices::Local {

/// The database could not be opened or reached at all, as opposed to one that is there and cannot be used.
class NotReachable : public TsError {
 public:
  using TsError::TsError;
};

/// The store that a session records into is no longer the one that it began in.
class StoreReplaced : public TsError {
 public:
  explicit StoreReplaced(const std::string& name)
      : TsError("TS database '" + name +
                "' was removed or replaced since the session began; expected it to stay until the next session") {}
};

/// What a connection does where there is no store yet, or one of an earlier version.
enum class Opening {
  MakesStore,    ///< Makes it, or brings it up.
  ExpectsStore,  ///< Raises where there is none.
  Tries,         ///< Changes nothing: what records is to bring it up within its own transaction.
};

/// One connection to a store, used by one operation at a time, and what the databases do each in its own way.
class Connection {
 public:
  /// @param name as errors call the database.
  Connection(std::string name, Opening opening) : name(std::move(name)), opening(opening) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  soci::session& Sql() { return sql; }
  const std::string& Name() const { return name; }

  /// Makes what is missing of a store, or brings one of an earlier version up, within a transaction.
  /// @return the version that it had; 0 for none.
  int BringUpWithin();
  /// Makes what the rows of these months need beside the tables.
  virtual void MakeRoom() {}

  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Rollback();
  /// The key of the next row of a table, within the transaction that adds the row.
  virtual long long NextKey(const std::string& table, const std::string& column) = 0;
  /// Lets nobody else add activities or versions until the transaction ends.
  virtual void HoldActivities() = 0;
  /// Inserts an event and its parameters. To be called in a transaction.
  virtual void Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
                      std::optional<long long> configuration) = 0;

  /// Begins and ends the time within which an operation ends, where a network could hold it up for ever.
  virtual void StartOperation() {}
  virtual void EndOperation() {}

  /// Whether the next operation can use it after some time without one; otherwise it is to be closed.
  /// @throws StoreReplaced where its store is no longer the one that others find.
  virtual bool IsUsable() = 0;
  /// Whether no transaction is open: then an operation that raised has left nothing behind.
  virtual bool IsOutsideTransaction() = 0;
  /// Whether the server is gone, and with it perhaps all others.
  virtual bool IsLost() { return false; }
  /// What the database layer raised, as an error that names the database.
  virtual TsError ErrorOf(const soci::soci_error& reason) = 0;

 protected:
  /// Makes the tables where there are none yet, and brings up a store of an earlier version.
  void BringUp();
  /// The version of the store's schema; 0 where there are no tables yet.
  /// @throws StoreReplaced where there should be some; TsError for a database of another program, or with a schema of a
  /// later version.
  int StoredVersion();

  struct Contents {
    bool any = false;      ///< Whether there is any table.
    bool isStore = false;  ///< Whether there are those of a store.
  };

  const std::string name;
  const Opening opening;

 private:
  virtual Contents FindTables() = 0;
  virtual void BringUpSchema(int from) = 0;
  virtual void HoldSchema() = 0;

  soci::session sql;
};

/// Opens a store, which makes it or brings it up where that is needed.
/// @throws NotReachable; StoreReplaced; TsError when it is no store that this code can record in.
std::unique_ptr<Connection> OpenConnection(const Database& database, Opening opening = Opening::MakesStore);

/// A write, all or nothing: rolls back unless committed.
class Transaction {
 public:
  explicit Transaction(Connection& connection) : connection(connection) { connection.Begin(); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Gives up an error of the rollback: a connection with an open transaction is closed.
  ~Transaction();

  void Commit();

 private:
  Connection& connection;
  bool open = true;
};

}  // namespace Quor::TolvaServices::Local

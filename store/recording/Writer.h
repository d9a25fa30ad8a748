#pragma once

#include "store/database/Connection.h"
#include "store/database/Database.h"
#include "store/recording/EventRow.h"

#include <memory>
#include <string>

namespace Velora::Store {

/// What opening a store does where there is none yet, or one of an earlier version.
enum class Opening {
  MakesStore,    ///< Makes it, or brings it up.
  ExpectsStore,  ///< Raises where there is none.
  Tries,         ///< Changes nothing: what records must bring it up within its own transaction.
};

/// A store opened for recording, used by one operation at a time, and what the databases do each in its own way.
class Writer {
 public:
  explicit Writer(Opening opening) : opening(opening) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  virtual ~Writer() = default;

  virtual Connection& Sql() = 0;
  const std::string& Name() { return Sql().Name(); }

  /// Makes what is missing of a store, or brings one of an earlier version up, within a transaction.
  /// @return the version that it had; 0 for none.
  int BringUpWithin();
  /// Makes what the rows of these months need beside the tables.
  virtual void MakeRoom() {}

  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Rollback() { Sql().RunScript("ROLLBACK"); }
  /// The key of the next row of a table, within the transaction that adds the row.
  virtual long long NextKey(const std::string& table, const std::string& column) = 0;
  /// Lets nobody else add activities or versions until the transaction ends.
  virtual void HoldActivities() = 0;
  /// Lets nobody else seal until the transaction ends.
  virtual void HoldSeals() = 0;
  /// Inserts an event and its parameters, within a transaction.
  virtual void Insert(const EventRow& event) = 0;

  /// Begins and ends the time within which an operation ends, where a network could hold it up for ever.
  virtual void StartOperation() {}
  virtual void EndOperation() {}

  /// Whether the next operation can use it after some time without one; otherwise it has to be closed.
  /// @throws StoreReplaced where its store is no longer the one that others find.
  virtual bool IsUsable() = 0;
  /// Whether no transaction is open: then an operation that raised has left nothing behind.
  virtual bool IsOutsideTransaction() = 0;
  /// Whether the server is gone, and with it perhaps all other connections.
  virtual bool IsLost() { return false; }

 protected:
  /// Makes the tables where there are none yet, and brings up a store of an earlier version.
  void BringUp();
  /// The version of the store's schema; 0 where there are no tables yet.
  /// @throws StoreReplaced where there should be some; Error for a database of another program, or with a schema of a
  /// later version.
  int StoredVersion();

  struct Contents {
    bool any = false;      ///< Whether there is any table.
    bool isStore = false;  ///< Whether there are those of a store.
  };

  const Opening opening;

 private:
  virtual Contents FindTables() = 0;
  virtual void BringUpSchema(int from) = 0;
  virtual void HoldSchema() = 0;
};

/// Opens a store for recording, which makes it or brings it up where that is needed.
/// @throws NotReachable; StoreReplaced; Error when it is not a store that this code can record in.
std::unique_ptr<Writer> OpenForWriting(const Database& database, Opening opening = Opening::MakesStore);

/// A write, all or nothing: rolls back unless committed.
class Transaction {
 public:
  explicit Transaction(Writer& store) : store(store) { store.Begin(); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Ignores an error of the rollback: a connection with an open transaction is closed.
  ~Transaction();

  void Commit();

 private:
  Writer& store;
  bool open = true;
};

}  // namespace Velora::Store

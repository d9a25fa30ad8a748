#pragma once

#include "store/database/Connection.h"
#include "store/database/Database.h"
#include "store/recording/ActivityRows.h"
#include "store/recording/EventRow.h"
#include "store/recording/ExecutionRow.h"
#include "store/schema/Versions.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// What opening a store does if there is none yet or it has an earlier version.
enum class Opening {
  MakesStore,    ///< Makes or upgrades it.
  ExpectsStore,  ///< Throws if there is none.
  Tries,         ///< Changes nothing. The caller upgrades the store in its own transaction.
};

/// A store opened for recording, for one operation at a time. The subclasses do what differs between the databases.
class Writer {
 public:
  explicit Writer(Opening opening) : opening(opening) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  virtual ~Writer() = default;

  virtual Connection& Sql() = 0;
  const std::string& Name() { return Sql().Name(); }

  /// Makes or upgrades the store, within a transaction.
  /// @return the version that it had; 0 if there was none.
  int BringUpWithin();
  /// Makes what rows of these months need: on a server, partitions.
  virtual void MakeRoom() {}

  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Rollback() { Sql().RunScript("ROLLBACK"); }
  /// Refuses hosts in a store that can only be read, filled, sealed and given notes.
  /// @throws Error that says so.
  virtual void ExpectToBeRecordedInto() {}
  /// The key of the next row of this store in a table, within the transaction that adds the row.
  virtual long long NextKey(const std::string& table, const std::string& column) = 0;
  /// Keeps others from adding activities and versions until the transaction ends.
  virtual void HoldActivities() = 0;
  /// Keeps others from sealing until the transaction ends.
  virtual void HoldSeals() = 0;
  /// Inserts an event and its parameters, within a transaction.
  virtual void Insert(const EventRow& event) = 0;
  /// Inserts an execution and its first status, within a transaction. @return the key of the execution.
  virtual long long Insert(const ExecutionRow& execution) = 0;
  /// Adds a status, within a transaction, unless the newest one of the execution is the same.
  /// @return whether there is an execution with this key and this guid.
  virtual bool AddStatus(const StatusRow& status) = 0;
  /// Finds or adds activities and their versions, and adds a registration of each, in their order, within a transaction
  /// that holds the activities. @return the rows of the versions.
  virtual std::vector<ActivityVersionRow> Register(const Registration& registration,
                                                   const std::vector<ActivityVersionRow>& versions) = 0;

  /// Takes the lock by which others see that the host of a new session lives (SessionLocks.h), and notes where it is,
  /// within the transaction that adds the session. Without the lock, the session is recorded all the same.
  virtual void HoldLock(long long /*session*/) {}
  /// Takes the lock of a session on a server, if it is new or was lost. Is called after each operation that succeeded;
  /// does not fail, and does not make the operation longer than it may be.
  virtual void KeepLock(long long /*session*/) noexcept {}
  /// Waits for the statements of the transaction that were sent without waiting; throws the first error of them.
  virtual void Settle() {}

  /// Starts the time limit of an operation, if a network could delay it for ever.
  virtual void StartOperation() {}
  /// Ends the time limit of an operation.
  virtual void EndOperation() {}

  /// Whether opening another one takes so long that one opened for a check is better kept for the session after it.
  virtual bool IsFar() const { return false; }
  /// Whether the next operation can use the connection. If not, it must be closed.
  /// @throws StoreReplaced when the store was replaced by another one.
  virtual bool IsUsable() = 0;
  /// Whether no transaction is open, so that an operation that failed has left nothing.
  virtual bool IsOutsideTransaction() = 0;
  /// Whether the connection was lost. Then other connections to the server can be lost too.
  virtual bool IsLost() { return false; }

 protected:
  struct Contents {
    bool any = false;                     ///< Whether the database has a table.
    bool isStore = false;                 ///< Whether it has the tables of a store.
    std::optional<StoreVersion> version;  ///< Of the store, if it is known already.
  };

  /// Makes or upgrades the store, in a transaction of its own.
  void BringUp();
  /// The version of the store's schema; 0 if there are no tables yet.
  /// @throws StoreReplaced when there must be tables. @throws Error when the database belongs to another program or has
  /// a later version.
  int VersionIn(const Contents& contents);
  int StoredVersion() { return VersionIn(FindTables()); }

  const Opening opening;

 private:
  virtual Contents FindTables() = 0;
  virtual void BringUpSchema(int from) = 0;
  virtual void HoldSchema() = 0;
};

/// Opens a store for recording.
/// @throws NotReachable, StoreReplaced, or Error when this code cannot record into it.
std::unique_ptr<Writer> OpenForWriting(const Database& database, Opening opening = Opening::MakesStore);

/// A transaction: is rolled back unless Commit() was called.
class Transaction {
 public:
  explicit Transaction(Writer& store) : store(store) { store.Begin(); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Ignores an error of the rollback: a connection with an open transaction is closed afterwards.
  ~Transaction();

  void Commit();

 private:
  Writer& store;
  bool open = true;
};

}  // namespace Velora::Store

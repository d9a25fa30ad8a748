#pragma once

#include "store/Error.h"
#include "store/database/Database.h"
#include "store/reading/Source.h"

#include <memory>
#include <string>

namespace Velora::Store {

/// The store has a schema that this program does not know.
class UnknownSchema : public Error {
 public:
  using Error::Error;
};

/// A store opened for reading, in the state that it had at the opening, whatever hosts record later. Reading does not
/// change the store, does not wait for hosts that write, and does not make them wait.
class Reader {
 public:
  /// @param snapshot the snapshot of another connection to the server, to read the same state; empty for the current
  /// state.
  /// @throws NoStoreYet when there is no store. @throws UnknownSchema, or Error when this program cannot read the
  /// store.
  explicit Reader(const Database& database, const std::string& snapshot = "");

  /// Where a further connection finds this store: of several servers, the one that this one is connected to.
  const Database& Where() const { return database; }
  /// The name of the store in messages.
  const std::string& Name() const { return source->Sql().Name(); }
  int SchemaVersion() const { return schemaVersion; }
  Connection& Sql() const { return source->Sql(); }
  /// @throws Error when a host began to write meanwhile, so that what was read can be a mixture of two states.
  void ExpectUntouched() const { source->ExpectUntouched(); }

  /// Holds no state any more, so that the store need not keep what changes meanwhile. Nothing can be asked before
  /// Renew(), and nothing that asks may outlive this.
  void Release() { source->Release(); }
  /// Reads the state that the store has now. @throws as the constructor does.
  void Renew();

 private:
  void ExpectStore();

  Database database;
  const std::unique_ptr<Source> source;
  int schemaVersion = 0;
};

}  // namespace Velora::Store

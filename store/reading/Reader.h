#pragma once

#include "store/database/Database.h"
#include "store/reading/Source.h"

#include <memory>
#include <string>

namespace Velora::Store {

/// A store opened for reading: one state of it, as it was at the opening, whatever hosts record meanwhile. Reading
/// neither changes the store, nor waits for those who write it, nor makes them wait.
class Reader {
 public:
  /// @param snapshot of a connection to the same server, whose state is to be read; empty for that of this moment.
  /// @throws NoStoreYet; Error when it is not a store that this program can read.
  explicit Reader(const Database& database, const std::string& snapshot = "");

  const Database& Where() const { return database; }
  /// As messages call it.
  const std::string& Name() const { return source->Sql().Name(); }
  int SchemaVersion() const { return schemaVersion; }
  Connection& Sql() const { return source->Sql(); }
  /// @throws Error when what was read may be a mixture, since hosts began to write while it was read.
  void ExpectUntouched() const { source->ExpectUntouched(); }

 private:
  const Database database;
  const std::unique_ptr<Source> source;
  int schemaVersion = 0;
};

}  // namespace Velora::Store

#pragma once

#include "Settings.h"
#include "reading/Source.h"

#include <memory>
#include <string>

namespace Velora::Ts {

/// A store opened for reading: one state of it, as it was at the opening.
class Store {
 public:
  using Database = Quor::TolvaServices::Local::Database;

  /// @param snapshot of a connection to the same server, whose state is to be read; empty for that of this moment.
  /// @throws TsError when it is no store that this program can read.
  explicit Store(const Database& database, const std::string& snapshot = "");

  Database::Kind Kind() const { return database.kind; }
  /// The file, or where to connect.
  const std::string& Where() const { return database.where; }
  /// As messages call it.
  const std::string& Name() const { return name; }
  int SchemaVersion() const { return schemaVersion; }
  Source& Reading() const { return *source; }
  /// @throws TsError when what was read may be a mixture, since hosts began to write while it was read.
  void ExpectUntouched() const { source->ExpectUntouched(); }

 private:
  const Database database;
  const std::string name;
  const std::unique_ptr<Source> source;
  int schemaVersion = 0;
};

}  // namespace Velora::Ts

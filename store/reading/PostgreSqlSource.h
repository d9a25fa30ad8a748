#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/reading/Source.h"

#include <string>

namespace Velora::Store {

/// A database on a PostgreSQL server, opened for reading.
class PostgreSqlSource : public Source {
 public:
  /// @param address an address for PostgreSQL's client library.
  /// @param snapshot the snapshot of another connection, to read the same state; empty for the current state.
  explicit PostgreSqlSource(const std::string& address, const std::string& snapshot);

  Connection& Sql() override { return connection; }
  bool IsStore() override;
  void ExpectUntouched() const override {}
  void Release() override { connection.RunScript("COMMIT"); }
  void Renew() override { Begin(); }

 private:
  void Begin();

  PostgreSqlConnection connection;
};

}  // namespace Velora::Store

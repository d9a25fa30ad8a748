#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/reading/Source.h"

#include <string>

namespace Velora::Store {

/// A database of a PostgreSQL server, opened for reading.
class PostgreSqlSource : public Source {
 public:
  /// @param address what PostgreSQL's client library takes.
  /// @param snapshot of another connection, whose state is to be read; empty for that of this moment.
  explicit PostgreSqlSource(const std::string& address, const std::string& snapshot);

  Connection& Sql() override { return connection; }
  bool IsStore() override;
  void ExpectUntouched() const override {}

 private:
  PostgreSqlConnection connection;
};

}  // namespace Velora::Store

#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/recording/Writer.h"

#include <chrono>
#include <string>

namespace Velora::Store {

/// A store in a database of a PostgreSQL server, from version 14 on.
class PostgreSqlWriter : public Writer {
 public:
  /// @param address what PostgreSQL's client library takes.
  PostgreSqlWriter(const std::string& address, Opening opening);

  Connection& Sql() override { return connection; }
  /// Partitions for the months to come: from then on once a day, so that a host that runs for months finds its own.
  void MakeRoom() override;
  void Begin() override;
  void Commit() override;
  long long NextKey(const std::string& table, const std::string& column) override;
  void HoldActivities() override;
  void HoldSeals() override;
  void Insert(const EventRow& event) override;
  void StartOperation() override;
  void EndOperation() override { connection.LimitTo(std::nullopt); }
  bool IsUsable() override;
  bool IsOutsideTransaction() override;
  bool IsLost() override { return connection.IsLost(); }

 private:
  using Clock = PostgreSqlConnection::Clock;

  Contents FindTables() override;
  void BringUpSchema(int from) override;
  void HoldSchema() override;
  void Configure();
  void Explain(const DatabaseError& error) const;
  bool WasCommitted();

  PostgreSqlConnection connection;
  std::string server;       // its cluster, and the line of its history
  std::string transaction;  // the server's number of the transaction that is open,
  std::string logged;       // and what of its log was on its disk when that began
  Clock::time_point partitionsDue = Clock::time_point::max();
};

}  // namespace Velora::Store

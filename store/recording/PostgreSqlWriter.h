#pragma once

#include "store/database/PostgreSqlConnection.h"
#include "store/recording/Writer.h"

#include <chrono>
#include <optional>
#include <string>

namespace Velora::Store {

/// A store on a PostgreSQL server of version 14 or later, opened for recording.
class PostgreSqlWriter final : public Writer {
 public:
  /// @param address an address for PostgreSQL's client library.
  PostgreSqlWriter(const std::string& address, Opening opening);

  Connection& Sql() override { return connection; }
  /// Makes the partitions of the next months; from then on once a day, for hosts that run for months.
  void MakeRoom() override;
  void Begin() override;
  void Commit() override;
  void Rollback() override;
  long long NextKey(const std::string& table, const std::string& column) override;
  void HoldActivities() override;
  void HoldSeals() override;
  void Insert(const EventRow& event) override;
  long long Insert(const ExecutionRow& execution) override;
  bool AddStatus(const StatusRow& status) override;
  std::vector<ActivityVersionRow> Register(const Registration& registration,
                                           const std::vector<ActivityVersionRow>& versions) override;
  void KeepLock(long long session) noexcept override;
  void Settle() override { connection.Settle(); }
  void StartOperation() override;
  void EndOperation() override;
  bool IsFar() const override { return true; }
  bool IsUsable() override;
  bool IsOutsideTransaction() override;
  bool IsLost() override { return connection.IsLost(); }

 private:
  using Clock = PostgreSqlConnection::Clock;

  Contents FindTables() override;
  void BringUpSchema(int from) override;
  void HoldSchema() override;
  /// Prepares the connection for recording, and asks what is there, in one round trip.
  Contents Configure();
  void Explain(const DatabaseError& error) const;
  bool WasCommitted();

  const std::string address;
  PostgreSqlConnection connection;
  std::optional<Clock::time_point> opened;  // when the operation that opened the connection began
  Clock::time_point started;                // of the operation
  std::string server;                       // the identifier of its cluster, its timeline and its start
  std::string transaction;                  // the number of the open transaction on the server
  std::string logged;                       // how much of the server's log was on its disk when the transaction began
  Clock::time_point partitionsDue = Clock::time_point::max();  // unless it is not known whether there are any
};

}  // namespace Velora::Store

#pragma once

#include "Connection.h"
#include "SocketDeadline.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

struct pg_conn;

namespace Quor::TolvaServices::Local {

/// A store in a database of a PostgreSQL server, from version 14 on.
class PostgreSqlConnection : public Connection {
 public:
  /// @param connection what PostgreSQL's client library takes.
  PostgreSqlConnection(const std::string& connection, Opening opening);

  /// Partitions for the months to come: from then on once a day, so that a host that runs for months finds its own.
  void MakeRoom() override;
  void Begin() override;
  void Commit() override;
  long long NextKey(const std::string& table, const std::string& column) override;
  void HoldActivities() override;
  void Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
              std::optional<long long> configuration) override;
  void StartOperation() override;
  void EndOperation() override { deadline.reset(); }
  bool IsUsable() override;
  bool IsOutsideTransaction() override;
  bool IsLost() override;
  TsError ErrorOf(const soci::soci_error& reason) override;

 private:
  Contents FindTables() override;
  void BringUpSchema(int from) override;
  void HoldSchema() override;
  void Open();
  void Configure();
  bool WasCommitted();
  void LimitTo(std::chrono::milliseconds longest);
  pg_conn* Handle();

  std::string connection;
  std::string server;       // its cluster, and the line of its history
  std::string transaction;  // the server's number of the transaction that is open,
  std::string logged;       // and what of its log was on its disk when that began
  std::chrono::steady_clock::time_point partitionsDue = std::chrono::steady_clock::time_point::max();
  std::unique_ptr<SocketDeadline> deadline;
};

}  // namespace Quor::TolvaServices::Local

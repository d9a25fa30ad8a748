#pragma once

#include "Connection.h"
#include "SqliteEvents.h"
#include "SqliteFiles.h"
#include "SqliteWaiting.h"

#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// A store in a file of SQLite.
class SqliteConnection : public Connection {
 public:
  /// @param file absolute path.
  SqliteConnection(const std::string& file, Opening opening);

  void Begin() override;
  void Commit() override;
  void Rollback() override;
  long long NextKey(const std::string& table, const std::string& column) override;
  void HoldActivities() override {}  // a transaction holds the whole file
  void Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
              std::optional<long long> configuration) override;
  bool IsUsable() override;
  bool IsOutsideTransaction() override;
  TsError ErrorOf(const soci::soci_error& reason) override;

 private:
  Contents FindTables() override;
  void BringUpSchema(int from) override;
  void HoldSchema() override {}
  void Configure();
  void ExpectFilesInPlace() const;

  SqliteWaiting waiting;
  std::optional<SqliteFiles> files;  // once they are all open
  std::optional<SqliteEvents> events;
};

}  // namespace Quor::TolvaServices::Local

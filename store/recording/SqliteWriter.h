#pragma once

#include "store/database/SqliteConnection.h"
#include "store/recording/SqliteFiles.h"
#include "store/recording/SqliteWaiting.h"
#include "store/recording/Writer.h"

#include <VeloraSystem/ProcessLock.h>

#include <optional>
#include <string>

namespace Velora::Store {

/// A store in an SQLite file, opened for recording.
class SqliteWriter : public Writer {
 public:
  /// @param file the absolute path.
  SqliteWriter(const std::string& file, Opening opening);

  Connection& Sql() override { return connection; }
  void Begin() override;
  void Commit() override;
  void Rollback() override;
  void ExpectToBeRecordedInto() override;
  long long NextKey(const std::string& table, const std::string& column) override;
  void HoldActivities() override {}  // a transaction holds the whole file
  void HoldSeals() override {}
  void Insert(const EventRow& event) override;
  long long Insert(const ExecutionRow& execution) override;
  bool AddStatus(const StatusRow& status) override;
  std::vector<ActivityVersionRow> Register(const Registration& registration,
                                           const std::vector<ActivityVersionRow>& versions) override {
    return RegisterOneByOne(*this, registration, versions);
  }
  void HoldLock(long long session) override;
  bool IsUsable() override;
  bool IsOutsideTransaction() override;

 private:
  Contents FindTables() override;
  void BringUpSchema(int from) override;
  void HoldSchema() override {}
  void Configure();
  void InsertStatus(long long execution, long long session, int code, const std::string& at);
  void Explain(const DatabaseError& error) const;
  void TurnOnWriteAheadLog();
  std::string AskForWriteAheadLog();
  void ExpectFilesInPlace() const;

  SqliteConnection connection;
  SqliteWaiting waiting;
  std::optional<SqliteFiles> files;         // once all three are open
  std::optional<System::ProcessLock> lock;  // of the session that the open transaction adds
};

}  // namespace Velora::Store

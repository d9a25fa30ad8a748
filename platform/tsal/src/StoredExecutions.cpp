#include "StoredExecutions.h"

#include "StoredActivities.h"
#include "StoredTimeOf.h"
#include "store/values/Guid.h"
#include "store/values/StoredText.h"

#include <TSAL/Error.h>

#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

namespace {

using Types::ActivityExecution;
using Types::ActivityExecutionStatus;
using Types::Tsid;

/// What an execution is first saved as, and stays.
struct ExecutionRecord {
  std::optional<long long> parent;
  long long root = 0;
  std::optional<long long> version;
  std::string node;
  std::string description;
  int kind = 0;
};

std::optional<ExecutionRecord> FindRecord(Connection& sql, long long row) {
  const auto found =
      sql.Find<std::optional<long long>, long long, std::optional<long long>, std::string, std::string, int>(
          "SELECT parent_id, root_id, version_id, node, description, kind FROM executions WHERE execution_id = ?1",
          row);
  if (!found) {
    return std::nullopt;
  }
  const auto& [parent, root, version, node, description, kind] = *found;
  return ExecutionRecord{parent, root, version, node, description, kind};
}

ExecutionRecord RecordOf(Writer& store, const ActivityExecution& execution) {
  ExecutionRecord record;
  if (execution.Parent != nullptr) {
    record.parent = ExecutionRow(store.Sql(), execution.Parent->Id);
  }
  record.version = VersionRow(store, execution.ActivityVersion);
  record.node = ToStoredText(execution.Node);
  record.description = ToStoredText(execution.Description);
  record.kind = execution.Kind;
  return record;
}

void AddStatus(Connection& sql, long long row, long long session, int code, const std::string& at) {
  sql.Run("INSERT INTO statuses (execution_id, session_id, code, at) VALUES (?1, ?2, ?3, ?4)", row, session, code, at);
}

ActivityExecutionStatus NewestStatus(Connection& sql, long long row) {
  const auto [code, at] =
      sql.Find<int, std::string>(
             "SELECT code, at FROM statuses WHERE execution_id = ?1 ORDER BY status_id DESC LIMIT 1", row)
          .value();
  return {static_cast<Types::Enums::ActivityExecStatus>(code),
          Types::DateTimeOffset::FromMicroseconds(FromStoredTime(at).time_since_epoch().count())};
}

void Insert(Writer& store, long long session, const std::string& guid, const ActivityExecution& execution) {
  Connection& sql = store.Sql();
  const ExecutionRecord record = RecordOf(store, execution);
  // Known before the insertion, since a top-level execution is its own root.
  const long long row = store.NextKey("executions", "execution_id");
  const long long root = record.parent ? FindRecord(sql, *record.parent)->root : row;
  const std::string startedAt = StoredTimeOf(execution.Status.Time);
  sql.Run(
      "INSERT INTO executions (execution_id, guid, parent_id, root_id, session_id, version_id, node, description, "
      "kind, started_at) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
      row, guid, record.parent, root, session, record.version, record.node, record.description, record.kind, startedAt);
  AddStatus(sql, row, session, static_cast<int>(execution.Status.Code), startedAt);
}

void ExpectUnchanged(bool unchanged, const std::string& guid, const char* what) {
  if (!unchanged) {
    throw TsError("execution '" + guid + "' was first saved with another " + what + "; expected that one again");
  }
}

void Update(Writer& store, long long session, const std::string& guid, const ActivityExecution& execution) {
  Connection& sql = store.Sql();
  const long long row = ExecutionRow(sql, execution.Id);
  const ExecutionRecord stored = FindRecord(sql, row).value();
  const ExecutionRecord given = RecordOf(store, execution);
  ExpectUnchanged(given.version == stored.version, guid, "activity version");
  ExpectUnchanged(given.node == stored.node, guid, "node");
  ExpectUnchanged(given.description == stored.description, guid, "description");
  ExpectUnchanged(given.kind == stored.kind, guid, "kind");
  ExpectUnchanged(!given.parent || given.parent == stored.parent, guid, "parent, or none");
  const ActivityExecutionStatus newest = NewestStatus(sql, row);
  if (execution.Status.Code != newest.Code || execution.Status.Time != newest.Time) {
    AddStatus(sql, row, session, static_cast<int>(execution.Status.Code), StoredTimeOf(execution.Status.Time));
  }
}

}  // namespace

Tsid StoreExecution(Writer& store, long long session, const ActivityExecution& execution) {
  const bool known = execution.Id != Tsid();
  Tsid id(known ? GuidOf(execution.Id.GetGuid(), "execution") : NewGuid());
  Transaction transaction(store);
  if (known) {
    Update(store, session, id.GetGuid(), execution);
  } else {
    Insert(store, session, id.GetGuid(), execution);
  }
  transaction.Commit();
  return id;
}

ActivityExecution LoadExecution(Connection& sql, const Tsid& id) {
  const long long row = ExecutionRow(sql, id);
  const ExecutionRecord record = FindRecord(sql, row).value();
  ActivityExecution execution;
  execution.Id = Tsid(GuidOf(id.GetGuid(), "execution"));
  execution.Node = FromStoredText(record.node);
  execution.Description = FromStoredText(record.description);
  execution.Kind = record.kind;
  execution.Status = NewestStatus(sql, row);
  if (record.version) {
    execution.ActivityVersion = LoadVersion(sql, *record.version);
  }
  return execution;
}

long long ExecutionRow(Connection& sql, const Tsid& id) {
  const std::string guid = GuidOf(id.GetGuid(), "execution");
  const auto row = sql.Find<long long>("SELECT execution_id FROM executions WHERE guid = ?1", guid);
  if (!row) {
    throw TsError("execution '" + guid + "' is not known to this TS; expected one that it has stored");
  }
  return *row;
}

}  // namespace Quor::TolvaServices::Local

#include "StoredExecutions.h"

#include "Connection.h"
#include "Guid.h"
#include "Statement.h"
#include "StoredActivities.h"
#include "StoredText.h"
#include "StoredTime.h"

#include <optional>

namespace Quor::TolvaServices::Local {
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

soci::indicator Known(const std::optional<long long>& value) { return value ? soci::i_ok : soci::i_null; }

std::optional<long long> Optional(long long value, soci::indicator known) {
  return known == soci::i_ok ? std::optional(value) : std::nullopt;
}

std::optional<ExecutionRecord> FindRecord(soci::session& sql, long long row) {
  ExecutionRecord record;
  long long parent = 0;
  long long version = 0;
  soci::indicator hasParent = soci::i_null;
  soci::indicator hasVersion = soci::i_null;
  if (!Execute(
          sql,
          "SELECT parent_id, root_id, version_id, node, description, kind FROM executions WHERE execution_id = :row",
          soci::use(row), soci::into(parent, hasParent), soci::into(record.root), soci::into(version, hasVersion),
          soci::into(record.node), soci::into(record.description), soci::into(record.kind))) {
    return std::nullopt;
  }
  record.parent = Optional(parent, hasParent);
  record.version = Optional(version, hasVersion);
  return record;
}

ExecutionRecord RecordOf(Connection& connection, const ActivityExecution& execution) {
  ExecutionRecord record;
  if (execution.Parent != nullptr) {
    record.parent = ExecutionRow(connection.Sql(), execution.Parent->Id);
  }
  record.version = VersionRow(connection, execution.ActivityVersion);
  record.node = ToStoredText(execution.Node);
  record.description = ToStoredText(execution.Description);
  record.kind = execution.Kind;
  return record;
}

void AddStatus(soci::session& sql, long long row, long long session, int code, const std::string& at) {
  Execute(sql, "INSERT INTO statuses (execution_id, session_id, code, at) VALUES (:execution, :session, :code, :at)",
          soci::use(row), soci::use(session), soci::use(code), soci::use(at));
}

ActivityExecutionStatus NewestStatus(soci::session& sql, long long row) {
  int code = 0;
  std::string at;
  Execute(sql, "SELECT code, at FROM statuses WHERE execution_id = :execution ORDER BY status_id DESC LIMIT 1",
          soci::use(row), soci::into(code), soci::into(at));
  return {static_cast<Types::Enums::ActivityExecStatus>(code), FromStoredTime(at)};
}

void Insert(Connection& connection, long long session, const std::string& guid, const ActivityExecution& execution) {
  soci::session& sql = connection.Sql();
  ExecutionRecord record = RecordOf(connection, execution);
  // Known before the insertion, since a top-level execution is its own root.
  const long long row = connection.NextKey("executions", "execution_id");
  record.root = record.parent ? FindRecord(sql, *record.parent)->root : row;
  const std::string startedAt = ToStoredTime(execution.Status.Time);
  // Bound by reference: temporaries would be gone when the statement runs.
  const long long parent = record.parent.value_or(0);
  const long long version = record.version.value_or(0);
  soci::indicator hasParent = Known(record.parent);
  soci::indicator hasVersion = Known(record.version);
  Execute(sql,
          "INSERT INTO executions (execution_id, guid, parent_id, root_id, session_id, version_id, node, description, "
          "kind, started_at) VALUES (:row, :guid, :parent, :root, :session, :version, :node, :description, :kind, :at)",
          soci::use(row), soci::use(guid), soci::use(parent, hasParent), soci::use(record.root), soci::use(session),
          soci::use(version, hasVersion), soci::use(record.node), soci::use(record.description), soci::use(record.kind),
          soci::use(startedAt));
  AddStatus(sql, row, session, static_cast<int>(execution.Status.Code), startedAt);
}

void ExpectUnchanged(bool unchanged, const std::string& guid, const char* what) {
  if (!unchanged) {
    throw TsError("execution '" + guid + "' was first saved with another " + what + "; expected that one again");
  }
}

void Update(Connection& connection, long long session, const std::string& guid, const ActivityExecution& execution) {
  soci::session& sql = connection.Sql();
  const long long row = ExecutionRow(sql, execution.Id);
  const ExecutionRecord stored = FindRecord(sql, row).value();
  const ExecutionRecord given = RecordOf(connection, execution);
  ExpectUnchanged(given.version == stored.version, guid, "activity version");
  ExpectUnchanged(given.node == stored.node, guid, "node");
  ExpectUnchanged(given.description == stored.description, guid, "description");
  ExpectUnchanged(given.kind == stored.kind, guid, "kind");
  ExpectUnchanged(!given.parent || given.parent == stored.parent, guid, "parent, or none");
  const ActivityExecutionStatus newest = NewestStatus(sql, row);
  if (execution.Status.Code != newest.Code || execution.Status.Time != newest.Time) {
    AddStatus(sql, row, session, static_cast<int>(execution.Status.Code), ToStoredTime(execution.Status.Time));
  }
}

}  // namespace

Tsid StoreExecution(Connection& connection, long long session, const ActivityExecution& execution) {
  const bool known = execution.Id != Tsid();
  Tsid id(known ? GuidOf(execution.Id, "execution") : NewGuid());
  Transaction transaction(connection);
  if (known) {
    Update(connection, session, id.GetGuid(), execution);
  } else {
    Insert(connection, session, id.GetGuid(), execution);
  }
  transaction.Commit();
  return id;
}

ActivityExecution LoadExecution(Connection& connection, const Tsid& id) {
  soci::session& sql = connection.Sql();
  const long long row = ExecutionRow(sql, id);
  const ExecutionRecord record = FindRecord(sql, row).value();
  ActivityExecution execution;
  execution.Id = Tsid(GuidOf(id, "execution"));
  execution.Node = FromStoredText(record.node);
  execution.Description = FromStoredText(record.description);
  execution.Kind = record.kind;
  execution.Status = NewestStatus(sql, row);
  if (record.version) {
    execution.ActivityVersion = LoadVersion(sql, *record.version);
  }
  return execution;
}

long long ExecutionRow(soci::session& sql, const Tsid& id) {
  const std::string guid = GuidOf(id, "execution");
  long long row = 0;
  if (!Execute(sql, "SELECT execution_id FROM executions WHERE guid = :guid", soci::use(guid), soci::into(row))) {
    throw TsError("execution '" + guid + "' is not known to this TS; expected one that it has stored");
  }
  return row;
}

}  // namespace Quor::TolvaServices::Local

#include "StoredExecutions.h"

#include "StoredActivities.h"
#include "StoredTimeOf.h"
#include "store/values/Guid.h"
#include "store/values/StoredText.h"

#include <TSAL/Error.h>

#include <optional>
#include <string>
#include <tuple>
#include <utility>

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

namespace {

using Types::ActivityExecution;
using Types::ActivityExecutionStatus;
using Types::Tsid;

using Record = std::shared_ptr<const ExecutionRecord>;

std::string GuidOfExecution(const Tsid& id) { return GuidOf(id.GetGuid(), "execution"); }

Record ReadRecord(OpenStore& store, const std::string& guid) {
  const auto found = store.Sql()
                         .Find<long long, std::optional<long long>, long long, std::optional<std::string>, std::string,
                               std::string, int>(
                             "SELECT x.execution_id, x.parent_id, x.root_id, v.guid, x.node, x.description, x.kind "
                             "FROM executions x LEFT JOIN activity_versions v ON v.version_id = x.version_id "
                             "WHERE x.guid = ?1",
                             guid);
  if (!found) {
    throw TsError("execution '" + guid + "' is not known to this TS; expected one that it has stored");
  }
  const auto& [row, parent, root, version, node, description, kind] = *found;
  auto read = std::make_shared<const ExecutionRecord>(
      ExecutionRecord{row, parent, root, version ? FindVersion(store, *version) : nullptr, FromStoredText(node),
                      FromStoredText(description), kind});
  store.known.Keep(guid, read);
  return read;
}

Record FindRecord(OpenStore& store, const std::string& guid) {
  const Record known = store.known.Execution(guid);
  return known ? known : ReadRecord(store, guid);
}

// Asks for the guid too, so that an answer proves that this still is the store that had the row.
std::optional<ActivityExecutionStatus> NewestStatus(Connection& sql, long long row, const std::string& guid) {
  const auto found = sql.Find<int, std::string>(
      "SELECT s.code, s.at FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
      "WHERE x.execution_id = ?1 AND x.guid = ?2 ORDER BY s.status_id DESC LIMIT 1",
      row, guid);
  if (!found) {
    return std::nullopt;
  }
  const auto& [code, at] = *found;
  return ActivityExecutionStatus(
      static_cast<Types::Enums::ActivityExecStatus>(code),
      Types::DateTimeOffset::FromMicroseconds(FromStoredTime(at).time_since_epoch().count()));
}

std::pair<Record, ActivityExecutionStatus> FindWithStatus(OpenStore& store, const std::string& guid) {
  if (Record known = store.known.Execution(guid)) {
    if (const auto status = NewestStatus(store.Sql(), known->row, guid)) {
      return {std::move(known), *status};
    }
  }
  Record read = ReadRecord(store, guid);
  const auto status = NewestStatus(store.Sql(), read->row, guid);
  return {std::move(read), status.value()};
}

/// @return what may be kept after the commit; null if the version is not known yet.
Record Insert(OpenStore& store, long long session, const std::string& guid, const ActivityExecution& execution) {
  const Record parent =
      execution.Parent == nullptr ? nullptr : FindRecord(store, GuidOfExecution(execution.Parent->Id));
  const std::optional<long long> version = VersionRow(store, execution.ActivityVersion);
  ExecutionRecord made;
  made.parent = parent ? std::optional(parent->row) : std::nullopt;
  made.version =
      version ? store.known.Version(GuidOf(execution.ActivityVersion.Id.GetGuid(), "activity version")) : nullptr;
  made.node = execution.Node;
  made.description = execution.Description;
  made.kind = execution.Kind;
  made.row = store.writer->Insert({guid, made.parent, parent ? std::optional(parent->root) : std::nullopt, session,
                                   version, ToStoredText(made.node), ToStoredText(made.description), made.kind,
                                   StoredTimeOf(execution.Status.Time), static_cast<int>(execution.Status.Code)});
  made.root = parent ? parent->root : made.row;
  return version && !made.version ? nullptr : std::make_shared<const ExecutionRecord>(std::move(made));
}

void ExpectUnchanged(bool unchanged, const std::string& guid, const char* what) {
  if (!unchanged) {
    throw TsError("execution '" + guid + "' was first saved with another " + what + "; expected that one again");
  }
}

void ExpectSame(OpenStore& store, const ExecutionRecord& stored, const std::string& guid,
                const ActivityExecution& execution) {
  const Record parent =
      execution.Parent == nullptr ? nullptr : FindRecord(store, GuidOfExecution(execution.Parent->Id));
  const std::optional<long long> version = VersionRow(store, execution.ActivityVersion);
  ExpectUnchanged(version == (stored.version ? std::optional(stored.version->row) : std::nullopt), guid,
                  "activity version");
  ExpectUnchanged(execution.Node == stored.node, guid, "node");
  ExpectUnchanged(execution.Description == stored.description, guid, "description");
  ExpectUnchanged(execution.Kind == stored.kind, guid, "kind");
  ExpectUnchanged(!parent || parent->row == stored.parent, guid, "parent, or none");
}

void Update(OpenStore& store, long long session, const std::string& guid, const ActivityExecution& execution) {
  const std::string at = StoredTimeOf(execution.Status.Time);
  const auto update = [&](const ExecutionRecord& stored) {
    ExpectSame(store, stored, guid, execution);
    return store.writer->AddStatus({stored.row, guid, session, static_cast<int>(execution.Status.Code), at});
  };
  if (!update(*FindRecord(store, guid))) {  // what was known is of a store that is no longer there
    update(*ReadRecord(store, guid));
  }
}

}  // namespace

Tsid StoreExecution(OpenStore& store, long long session, const ActivityExecution& execution) {
  const bool known = execution.Id != Tsid();
  Tsid id(known ? GuidOfExecution(execution.Id) : NewGuid());
  const std::string guid = id.GetGuid();
  Transaction transaction(*store.writer);
  if (known) {
    Update(store, session, guid, execution);
    transaction.Commit();
    return id;
  }
  const Record made = Insert(store, session, guid, execution);
  transaction.Commit();
  if (made) {
    store.known.Keep(guid, made);
  }
  return id;
}

ActivityExecution LoadExecution(OpenStore& store, const Tsid& id) {
  const std::string guid = GuidOfExecution(id);
  const auto [record, status] = FindWithStatus(store, guid);
  ActivityExecution execution;
  execution.Id = Tsid(guid);
  execution.Node = record->node;
  execution.Description = record->description;
  execution.Kind = record->kind;
  execution.Status = status;
  if (record->version) {
    execution.ActivityVersion = record->version->version;
  }
  return execution;
}

long long ExecutionRow(OpenStore& store, const Tsid& id) { return FindRecord(store, GuidOfExecution(id))->row; }

}  // namespace Quor::TolvaServices::Local

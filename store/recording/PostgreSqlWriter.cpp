#include "store/recording/PostgreSqlWriter.h"

#include "store/database/PostgreSqlStart.h"
#include "store/recording/ServerLocks.h"
#include "store/schema/BringUp.h"
#include "store/values/Json.h"

#include <thread>

namespace Velora::Store {
namespace {

using Clock = PostgreSqlConnection::Clock;

constexpr std::chrono::milliseconds longestOperation{4500};  // even if the network fails
constexpr std::chrono::milliseconds longestWithLock{4900};
constexpr std::chrono::seconds longestBringUp{40};
constexpr std::chrono::seconds longestDoubt{2};   // how long to ask whether a transaction was committed
constexpr std::chrono::hours partitionsLast{24};  // the next months are looked at again

// The keys of the advisory locks that all hosts use. They begin with "TS", because a database has one set of keys.
constexpr const char* schemaLock = "SELECT pg_advisory_xact_lock(21587, 1)";
constexpr const char* activitiesLock = "SELECT pg_advisory_xact_lock(21587, 2)";

constexpr const char* insufficientPrivilege = "42501";

// Identifies the server: the identifier of its cluster, its timeline, which changes when a standby becomes the primary,
// and its start: a server that was restored from a copy can have both of the original.
constexpr const char* identity =
    "(CAST(system_identifier AS text) || '/' || left(pg_walfile_name(pg_current_wal_insert_lsn()), 8) || '/' || "
    "EXTRACT(EPOCH FROM pg_postmaster_start_time()))";

std::string AskServer() {
  return "SELECT current_setting('server_encoding'), (" + std::string(askWhyNot) +
         "), CASE WHEN pg_is_in_recovery() THEN '' ELSE " + identity + " END FROM pg_control_system()";
}

constexpr const char* askTables =
    "SELECT COUNT(*), COUNT(*) FILTER (WHERE relname = 'ts_schema') FROM pg_class c "
    "WHERE relkind IN ('r', 'p', 'v') AND relnamespace = to_regnamespace(quote_ident(current_schema())) AND "
    "NOT EXISTS (SELECT FROM pg_depend WHERE classid = CAST('pg_class' AS regclass) AND objid = c.oid "
    "AND deptype = 'e')";  // tables of extensions

// Whether a store of this version has the partitions that make_partitions() makes. The functions are only called where
// there is a table ts_schema.
constexpr const char* askRoom = R"(
    SELECT bool_and(has_partitions(CAST(to_char(to_date(CAST(event_month() AS text), 'YYYYMM')
                                                + make_interval(months => ahead), 'YYYYMM') AS bigint)))
    FROM generate_series(0, 2) AS ahead WHERE EXISTS (SELECT FROM ts_schema))";

int IntegerIn(const PostgreSqlConnection::Answer& answer, int column) {
  return std::stoi(PQgetvalue(answer.get(), 0, column));
}

std::string ParametersAsJson(const EventRow& event) {
  std::string json = "[";
  int position = 0;
  for (const ParameterRow& parameter : event.parameters) {
    json += position == 0 ? "{\"position\":" : ",{\"position\":";
    json += std::to_string(++position) + ",\"name\":";
    AppendText(json, parameter.name);
    json += std::string(",\"kind\":\"") + parameter.kind + '"';
    if (parameter.text) {
      json += ",\"value_text\":";
      AppendText(json, *parameter.text);
    }
    if (parameter.number) {
      json += ",\"value_number\":";
      AppendServerNumber(json, *parameter.number);
    }
    json += '}';
  }
  return json + ']';
}

}  // namespace

PostgreSqlWriter::PostgreSqlWriter(const std::string& address, Opening opening)
    : Writer(opening), address(address), connection(ConnectToServer(address)) {
  connection.ExplainErrorsBy([this](const DatabaseError& error) { Explain(error); });
  opened = Clock::now() - connection.TimeToConnect();
  PostgreSqlWriter::StartOperation();
  const int version = VersionIn(Configure());
  if (version < schemaVersion) {
    connection.LimitTo(Clock::now() + longestBringUp);
  }
  if (opening == Opening::Tries) {
    return;
  }
  if (version < schemaVersion) {
    BringUp();
    opened.reset();
  }
  if (partitionsDue == Clock::time_point::max()) {
    PostgreSqlWriter::MakeRoom();
  }
  connection.LimitTo(std::nullopt);
}

Writer::Contents PostgreSqlWriter::Configure() {
  std::string encoding;
  std::string whyNot;
  Contents contents;
  connection.Send(findStore, {});
  connection.Send(configure, {});
  connection.Send(AskServer(), {}, [&](const PostgreSqlConnection::Answer& answer) {
    encoding = PQgetvalue(answer.get(), 0, 0);
    whyNot = PQgetvalue(answer.get(), 0, 1);
    server = PQgetvalue(answer.get(), 0, 2);
  });
  connection.Send(askTables, {}, [&](const PostgreSqlConnection::Answer& answer) {
    contents = {IntegerIn(answer, 0) != 0, IntegerIn(answer, 1) != 0, std::nullopt};
  });
  connection.SendTrial(askVersion, [&](const PostgreSqlConnection::Answer& answer) {
    contents.version = {IntegerIn(answer, 0), IntegerIn(answer, 1)};
  });
  connection.SendTrial(askRoom, [this](const PostgreSqlConnection::Answer& answer) {
    if (std::string_view(PQgetvalue(answer.get(), 0, 0)) == "t") {
      partitionsDue = Clock::now() + partitionsLast;
    }
  });
  connection.Settle();
  if (!whyNot.empty()) {
    throw NotReachable("TS database '" + Name() + "' cannot be recorded into: " + whyNot);
  }
  if (encoding != "UTF8") {
    throw Error("TS database '" + Name() + "' has the encoding " + encoding +
                "; expected UTF8, which can store every text");
  }
  return contents;
}

// If the answer to the commit is lost, the number of the transaction says later whether it was committed. Partitions
// are made before, in their own transaction: with locks, it could wait for a host that waits for it.
void PostgreSqlWriter::Begin() {
  if (Clock::now() >= partitionsDue) {
    MakeRoom();
  }
  connection.DeferRuns(true);
  connection.SendKept("BEGIN", {});
  connection.SendKept("SELECT CAST(pg_current_xact_id() AS text), CAST(pg_current_wal_flush_lsn() AS text)", {},
                      [this](const PostgreSqlConnection::Answer& answer) {
                        transaction = PQgetvalue(answer.get(), 0, 0);
                        logged = PQgetvalue(answer.get(), 0, 1);
                      });
}

// The number of the transaction must be known before the commit is sent, and so must every error. A server warns when
// it committed, but does not know whether its synchronous standby has the commit.
void PostgreSqlWriter::Commit() {
  connection.Settle();
  connection.DeferRuns(false);
  connection.ForgetWarning();
  try {
    connection.RunScript("COMMIT");
  } catch (const DatabaseError&) {
    if (!IsLost() || !WasCommitted()) {
      throw;
    }
    return;
  }
  if (connection.HasWarned()) {
    WasCommitted();
  }
}

void PostgreSqlWriter::Rollback() {
  connection.DeferRuns(false);
  try {
    connection.Settle();
  } catch (const DatabaseError&) {
    // What failed is undone with the rest.
  }
  Writer::Rollback();
}

// The server process of the lost connection may still be committing, so the query is repeated until there is an answer.
// Only the answer of the same server counts, since its start: a standby that took its place, or a server restored from
// a copy, can lack the commit and can have given its number to another. After a crash of one of its processes, a server
// uses numbers again if nothing of their transactions had reached its disk, so that "committed" could be said of
// another transaction. It begins with a checkpoint then, so there must be none since this transaction began. Where a
// standby must have every commit, the query commits too, and so waits until the standby has both.
bool PostgreSqlWriter::WasCommitted() {
  static const std::string question =
      "SELECT CASE WHEN " + std::string(identity) +
      " <> $1 THEN 'unknown' WHEN pg_xact_status(CAST($2 AS xid8)) = 'committed' AND checkpoint_lsn >= CAST($3 AS "
      "pg_lsn) THEN 'unknown' ELSE COALESCE(pg_xact_status(CAST($2 AS xid8)), 'unknown') END, "
      "CASE WHEN current_setting('synchronous_standby_names') <> '' "
      "THEN pg_logical_emit_message(true, 'Velora', '') END FROM pg_control_system(), pg_control_checkpoint()";
  const std::string there = connection.ServerUri();
  for (const Clock::time_point end = Clock::now() + longestDoubt; Clock::now() < end;) {
    try {
      PostgreSqlConnection other(there, end);
      other.Send(configure, {});
      const std::string status = PQgetvalue(other.Ask(question, {server, transaction, logged}).get(), 0, 0);
      if (status == "unknown" || other.HasWarned()) {
        break;
      }
      if (status != "in progress") {
        return status == "committed";
      }
    } catch (const DatabaseError&) {
      // The server may be restarting.
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  throw DatabaseError("TS database '" + Name() + "' " +
                          (IsLost() ? "was lost while it stored a record"
                                    : "does not know whether its standby has a record that it stored") +
                          "; the record may be stored or not",
                      "", "");
}

// An operation that had to connect began with that.
void PostgreSqlWriter::StartOperation() {
  started = opened.value_or(Clock::now());
  connection.LimitTo(started + longestOperation);
}

void PostgreSqlWriter::EndOperation() {
  opened.reset();
  connection.LimitTo(std::nullopt);
}

void PostgreSqlWriter::KeepLock(long long session) noexcept {
  HoldOnServer(address, connection, session, started + longestWithLock);
}

// Takes the lock before the number: sealing waits for the lock, and after that no lower number can appear.
long long PostgreSqlWriter::NextKey(const std::string& table, const std::string& column) {
  const PostgreSqlConnection::Answer key =
      connection.Ask("LOCK TABLE " + table + " IN ROW EXCLUSIVE MODE; SELECT nextval(pg_get_serial_sequence('" + table +
                     "', '" + column + "'))");
  return std::stoll(PQgetvalue(key.get(), 0, 0));
}

void PostgreSqlWriter::HoldActivities() { connection.Run(activitiesLock); }

void PostgreSqlWriter::HoldSeals() { connection.RunScript("LOCK TABLE seals IN EXCLUSIVE MODE"); }

// Making or upgrading a store can take longer than an operation; hosts that begin meanwhile wait for it.
void PostgreSqlWriter::HoldSchema() {
  connection.RunScript(std::string("SET LOCAL statement_timeout = '30s'; SET LOCAL lock_timeout = '30s'; ") +
                       schemaLock);
}

// The key of a row is made by the statement that inserts it and the rows that refer to it: to learn it first would be a
// round trip. A prepared statement locks the table of its outer insertion first, so the other one is locked before, for
// the order in which everybody locks them. Both are locked before a number is taken, as NextKey() does.
void PostgreSqlWriter::Insert(const EventRow& event) {
  connection.Run("LOCK TABLE ONLY events IN ROW EXCLUSIVE MODE");
  connection.Run(
      "WITH stored AS (INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
      "VALUES (?1, ?2, ?3, ?4, ?5) RETURNING event_id) "
      "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) "
      "SELECT event_id, p.* FROM stored, json_to_recordset(CAST(?6 AS json)) AS p(position bigint, "
      "name text, kind text, value_text text, value_number double precision)",
      event.session, event.execution, event.configuration, event.name, event.at, ParametersAsJson(event));
}

long long PostgreSqlWriter::Insert(const ExecutionRow& execution) {
  connection.Run("LOCK TABLE executions IN ROW EXCLUSIVE MODE");
  return connection
      .Find<long long>(
          "WITH made AS (INSERT INTO executions (execution_id, guid, parent_id, root_id, session_id, version_id, node, "
          "description, kind, started_at) SELECT key, ?1, CAST(?2 AS bigint), COALESCE(CAST(?3 AS bigint), key), "
          "CAST(?4 AS bigint), CAST(?5 AS bigint), ?6, ?7, CAST(?8 AS bigint), ?9 "
          "FROM nextval(CAST('executions_execution_id_seq' AS regclass)) AS key "
          "RETURNING execution_id, session_id, started_at) "
          "INSERT INTO statuses (execution_id, session_id, code, at) "
          "SELECT execution_id, session_id, CAST(?10 AS bigint), started_at FROM made RETURNING execution_id",
          execution.guid, execution.parent, execution.root, execution.session, execution.version, execution.node,
          execution.description, execution.kind, execution.startedAt, execution.code)
      .value();
}

bool PostgreSqlWriter::AddStatus(const StatusRow& status) {
  return connection
      .Find<int>(
          "WITH newest AS (SELECT s.code, s.at FROM executions x JOIN statuses s ON s.execution_id = x.execution_id "
          "WHERE x.execution_id = ?1 AND x.guid = ?2 ORDER BY s.status_id DESC LIMIT 1), "
          "added AS (INSERT INTO statuses (execution_id, session_id, code, at) "
          "SELECT ?1, CAST(?3 AS bigint), CAST(?4 AS bigint), ?5 FROM newest "
          "WHERE code <> CAST(?4 AS bigint) OR at <> ?5) SELECT 1 FROM newest",
          status.execution, status.guid, status.session, status.code, status.at)
      .has_value();
}

void PostgreSqlWriter::MakeRoom() {
  connection.RunScript("SELECT make_partitions()");
  partitionsDue = Clock::now() + partitionsLast;
}

// A server that stops says so before it closes the connection: the first call reads the message, the second the end.
bool PostgreSqlWriter::IsUsable() {
  for (int look = 0; look < 2; ++look) {
    if (PQconsumeInput(connection.Handle()) != 1) {
      return false;
    }
  }
  return !IsLost();
}

bool PostgreSqlWriter::IsOutsideTransaction() { return PQtransactionStatus(connection.Handle()) == PQTRANS_IDLE; }

void PostgreSqlWriter::Explain(const DatabaseError& error) const {
  const std::string database = "TS database '" + connection.Name() + "'";
  if (connection.IsLost()) {
    throw DatabaseError(database + " was lost before this record was stored: " + error.reason, error.reason,
                        error.code);
  }
  if (error.code == insufficientPrivilege) {
    throw DatabaseError(database + " does not let this role do that: " + error.reason +
                            "; expected its owner to run 'velora-ts prepare --hosts ROLE'",
                        error.reason, error.code);
  }
}

Writer::Contents PostgreSqlWriter::FindTables() {
  const auto [tables, own] = connection.Find<int, int>(askTables).value();
  return {tables != 0, own != 0, std::nullopt};
}

void PostgreSqlWriter::BringUpSchema(int from) { BringUpPostgreSql(connection, from); }

}  // namespace Velora::Store

#include "store/recording/PostgreSqlWriter.h"

#include "store/database/PostgreSqlStart.h"
#include "store/schema/BringUp.h"
#include "store/values/Json.h"

#include <thread>

namespace Velora::Store {
namespace {

using Clock = PostgreSqlConnection::Clock;

constexpr std::chrono::milliseconds longestOperation{4500};  // even if the network fails
constexpr std::chrono::seconds longestBringUp{40};
constexpr std::chrono::seconds longestDoubt{2};  // how long to ask whether a transaction was committed

// The keys of the advisory locks that all hosts use. They begin with "TS", because a database has one set of keys.
constexpr const char* schemaLock = "SELECT pg_advisory_xact_lock(21587, 1)";
constexpr const char* activitiesLock = "SELECT pg_advisory_xact_lock(21587, 2)";

constexpr const char* insufficientPrivilege = "42501";

// Identifies the server: the identifier of its cluster and its timeline, which changes when a standby becomes the
// primary.
constexpr const char* identity =
    "(CAST(system_identifier AS text) || '/' || left(pg_walfile_name(pg_current_wal_insert_lsn()), 8))";

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
    : Writer(opening), connection(ConnectToServer(address)) {
  connection.ExplainErrorsBy([this](const DatabaseError& error) { Explain(error); });
  PostgreSqlWriter::StartOperation();
  Configure();
  const int version = StoredVersion();
  if (version < schemaVersion) {
    connection.LimitTo(Clock::now() + longestBringUp);
  }
  if (opening == Opening::Tries) {
    return;
  }
  if (version < schemaVersion) {
    BringUp();
  }
  PostgreSqlWriter::MakeRoom();
  PostgreSqlWriter::EndOperation();
}

void PostgreSqlWriter::Configure() {
  connection.RunScript(findStore);
  // Commits must be on the disk when they are acknowledged; a server that is set to do more keeps its setting. A host
  // that stops in the middle of a transaction loses its locks after some time.
  connection.RunScript(
      "SET statement_timeout = '4s'; SET lock_timeout = '4s'; SET default_transaction_isolation = 'read committed';"
      "SET idle_in_transaction_session_timeout = '60s';"
      "SELECT set_config('synchronous_commit', 'on', false) WHERE current_setting('synchronous_commit') = 'off'");
  const auto [encoding, whyNot] =
      connection
          .Find<std::string, std::string>("SELECT current_setting('server_encoding'), (" + std::string(askWhyNot) + ")")
          .value();
  if (!whyNot.empty()) {
    throw NotReachable("TS database '" + Name() + "' cannot be recorded into: " + whyNot);
  }
  if (encoding != "UTF8") {
    throw Error("TS database '" + Name() + "' has the encoding " + encoding +
                "; expected UTF8, which can store every text");
  }
  server = connection.Find<std::string>("SELECT " + std::string(identity) + " FROM pg_control_system()").value();
}

// If the answer to the commit is lost, the number of the transaction says later whether it was committed. Partitions
// are made before, in their own transaction: with locks, it could wait for a host that waits for it.
void PostgreSqlWriter::Begin() {
  if (Clock::now() >= partitionsDue) {
    MakeRoom();
  }
  const PostgreSqlConnection::Answer began =
      connection.Ask("BEGIN; SELECT CAST(pg_current_xact_id() AS text), CAST(pg_current_wal_flush_lsn() AS text)");
  transaction = PQgetvalue(began.get(), 0, 0);
  logged = PQgetvalue(began.get(), 0, 1);
}

void PostgreSqlWriter::Commit() {
  try {
    connection.RunScript("COMMIT");
  } catch (const DatabaseError&) {
    if (!IsLost() || !WasCommitted()) {
      throw;
    }
  }
}

// The server process of the lost connection may still be committing, so the query is repeated until there is an answer.
// Only the answer of the same server counts: a standby that took its place can lack the commit. After a crash, a server
// uses numbers again if nothing of their transactions had reached its disk, so that "committed" could be said of
// another transaction. A server begins with a checkpoint after a crash, so there must be none since this transaction
// began.
bool PostgreSqlWriter::WasCommitted() {
  static const std::string question =
      "SELECT CASE WHEN " + std::string(identity) +
      " <> $1 THEN 'unknown' WHEN pg_xact_status(CAST($2 AS xid8)) = 'committed' AND checkpoint_lsn >= CAST($3 AS "
      "pg_lsn) THEN 'unknown' ELSE COALESCE(pg_xact_status(CAST($2 AS xid8)), 'forgotten') END "
      "FROM pg_control_system(), pg_control_checkpoint()";
  const std::string there = connection.ServerUri();
  for (const Clock::time_point end = Clock::now() + longestDoubt; Clock::now() < end;) {
    try {
      PostgreSqlConnection other(there, end);
      const std::string status = PQgetvalue(other.Ask(question, {server, transaction, logged}).get(), 0, 0);
      if (status == "unknown") {
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
  throw DatabaseError("TS database '" + Name() + "' was lost while it stored a record; the record may be stored or not",
                      "", "");
}

void PostgreSqlWriter::StartOperation() { connection.LimitTo(Clock::now() + longestOperation); }

// Takes the lock before the number: sealing waits for the lock, and after that no lower number can appear.
long long PostgreSqlWriter::NextKey(const std::string& table, const std::string& column) {
  const PostgreSqlConnection::Answer key =
      connection.Ask("LOCK TABLE " + table + " IN ROW EXCLUSIVE MODE; SELECT nextval(pg_get_serial_sequence('" + table +
                     "', '" + column + "'))");
  return std::stoll(PQgetvalue(key.get(), 0, 0));
}

void PostgreSqlWriter::HoldActivities() { connection.RunScript(activitiesLock); }

void PostgreSqlWriter::HoldSeals() { connection.RunScript("LOCK TABLE seals IN EXCLUSIVE MODE"); }

// Making or upgrading a store can take longer than an operation; hosts that begin meanwhile wait for it.
void PostgreSqlWriter::HoldSchema() {
  connection.RunScript(std::string("SET LOCAL statement_timeout = '30s'; SET LOCAL lock_timeout = '30s'; ") +
                       schemaLock);
}

// Inserts the event and its parameters with one statement, because each statement is a round trip.
void PostgreSqlWriter::Insert(const EventRow& event) {
  connection.Run(
      "WITH stored AS (INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
      "VALUES (?1, ?2, ?3, ?4, ?5) RETURNING event_id) "
      "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) "
      "SELECT event_id, p.* FROM stored, json_to_recordset(CAST(?6 AS json)) AS p(position bigint, "
      "name text, kind text, value_text text, value_number double precision)",
      event.session, event.execution, event.configuration, event.name, event.at, ParametersAsJson(event));
}

void PostgreSqlWriter::MakeRoom() {
  connection.RunScript("SELECT make_partitions()");
  partitionsDue = Clock::now() + std::chrono::hours(24);
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
  const auto [tables, own] =
      connection
          .Find<int, int>(
              "SELECT COUNT(*), COUNT(*) FILTER (WHERE relname = 'ts_schema') FROM pg_class c "
              "WHERE relkind IN ('r', 'p', 'v') AND relnamespace = to_regnamespace(quote_ident(current_schema())) AND "
              "NOT EXISTS (SELECT FROM pg_depend WHERE classid = CAST('pg_class' AS regclass) AND objid = c.oid "
              "AND deptype = 'e')")  // tables of extensions
          .value();
  return {tables != 0, own != 0};
}

void PostgreSqlWriter::BringUpSchema(int from) { BringUpPostgreSql(connection, from); }

}  // namespace Velora::Store

#include "PostgreSqlConnection.h"

#include "PostgreSqlEvent.h"
#include "PostgreSqlQuestion.h"
#include "PostgreSqlSchema.h"
#include "PostgreSqlSettings.h"
#include "PostgreSqlStart.h"
#include "Schema.h"
#include "Statement.h"

#include <soci/postgresql/soci-postgresql.h>

#include <regex>
#include <thread>

namespace Quor::TolvaServices::Local {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds longestOperation{4500};  // whatever the network does
constexpr std::chrono::seconds longestBringUp{40};
constexpr std::chrono::seconds longestDoubt{2};  // how long a commit without an answer is asked after

// Keys of the locks that transactions of all hosts share; "TS" in front, since a database has one set of them.
constexpr const char* schemaLock = "SELECT pg_advisory_xact_lock(21587, 1)";
constexpr const char* activitiesLock = "SELECT pg_advisory_xact_lock(21587, 2)";

// Which server that is: the number that its cluster was made with, and the line of its history, which is another one
// after a standby took its place.
constexpr const char* identity =
    "(CAST(system_identifier AS text) || '/' || left(pg_walfile_name(pg_current_wal_insert_lsn()), 8))";

// On one line, and without the words that the database layer puts before it.
std::string ReasonOf(const soci::soci_error& error) {
  static const std::regex before(R"(^(Cannot [a-z ]*\.|Fatal error\.)\s*)");
  static const std::regex breaks(R"(\s*\n\s*)");
  static const std::regex end(R"(\s+$)");
  std::string reason = std::regex_replace(error.get_error_message(), before, "");
  reason = std::regex_replace(std::regex_replace(reason, before, ""), end, "");
  return std::regex_replace(reason, breaks, "; ");
}

std::string StateOf(const soci::soci_error& error) {
  const auto* const postgresql = dynamic_cast<const soci::postgresql_soci_error*>(&error);
  return postgresql == nullptr ? "" : postgresql->sqlstate();
}

}  // namespace

PostgreSqlConnection::PostgreSqlConnection(const std::string& connection, Opening opening)
    : Connection(NameOf(connection), opening), connection(WithoutBlanks(connection)) {
  Open();
  try {
    LimitTo(longestOperation);
    Configure();
    const int version = StoredVersion();
    if (version != schemaVersion) {
      LimitTo(longestBringUp);
    }
    if (opening == Opening::Tries) {
      return;
    }
    if (version != schemaVersion) {
      BringUp();
    }
    PostgreSqlConnection::MakeRoom();
    deadline.reset();
  } catch (const soci::soci_error& reason) {
    throw ErrorOf(reason);
  }
}

void PostgreSqlConnection::Open() {
  try {
    Sql().open(soci::postgresql, connection);
  } catch (const soci::soci_error& reason) {
    throw NotReachable("TS database '" + name + "' cannot be reached: " + ReasonOf(reason) +
                       "; expected a server there that runs and lets this user in");
  }
}

void PostgreSqlConnection::Configure() {
  PQsetNoticeProcessor(
      Handle(), [](void*, const char*) {}, nullptr);  // which would write to the host's standard error
  Execute(Sql(), findStore);
  // A server that is set to lose what it acknowledged is told not to; one that is set to do more goes on doing so. A
  // host that stops in the middle of a transaction gives up its locks in the end.
  Execute(Sql(),
          "SET statement_timeout = '4s'; SET lock_timeout = '4s'; SET default_transaction_isolation = 'read committed';"
          "SET idle_in_transaction_session_timeout = '60s';"
          "SELECT set_config('synchronous_commit', 'on', false) WHERE current_setting('synchronous_commit') = 'off'");
  std::string encoding;
  std::string whyNot;
  Execute(Sql(), "SELECT current_setting('server_encoding'), (" + std::string(askWhyNot) + ")", soci::into(encoding),
          soci::into(whyNot));
  if (!whyNot.empty()) {
    throw NotReachable("TS database '" + name + "' cannot be recorded into: " + whyNot);
  }
  if (encoding != "UTF8") {
    throw TsError("TS database '" + name + "' has the encoding " + encoding + "; expected UTF8, which has every text");
  }
  Execute(Sql(), "SELECT " + std::string(identity) + " FROM pg_control_system()", soci::into(server));
}

// The number of the transaction tells later whether it was committed, should the answer to that be lost. Partitions are
// made before it, in a transaction of their own: one that holds locks could wait for a host that waits for it.
void PostgreSqlConnection::Begin() {
  if (Clock::now() >= partitionsDue) {
    MakeRoom();
  }
  Execute(Sql(), "BEGIN; SELECT CAST(pg_current_xact_id() AS text), CAST(pg_current_wal_flush_lsn() AS text)",
          soci::into(transaction), soci::into(logged));
}

void PostgreSqlConnection::Commit() {
  try {
    Execute(Sql(), "COMMIT");
  } catch (const soci::soci_error&) {
    if (!IsLost() || !WasCommitted()) {
      throw;
    }
  }
}

// The lost connection's server process may still be at the commit, so it is asked after until there is an answer. That
// counts from the very server only: one that took its place may lack the commit. One that crashed gives out again the
// numbers of which nothing had reached its disk: then "committed" may be said of another's transaction. It begins anew
// with a checkpoint, so there has been none since this one began.
bool PostgreSqlConnection::WasCommitted() {
  static const std::string question =
      "SELECT CASE WHEN " + std::string(identity) +
      " <> $1 THEN 'unknown' WHEN pg_xact_status(CAST($2 AS xid8)) = 'committed' AND checkpoint_lsn >= CAST($3 AS "
      "pg_lsn) THEN 'unknown' ELSE COALESCE(pg_xact_status(CAST($2 AS xid8)), 'forgotten') END "
      "FROM pg_control_system(), pg_control_checkpoint()";
  const auto text = [](const char* value) { return std::string(value == nullptr ? "" : value); };
  const std::string there =
      WithAddress(connection, text(PQhost(Handle())), text(PQhostaddr(Handle())), text(PQport(Handle())));
  for (const Clock::time_point end = Clock::now() + longestDoubt; Clock::now() < end;) {
    const std::string status = AskUntil(end, there, question, {server, transaction, logged});
    if (status == "unknown") {
      break;
    }
    if (!status.empty() && status != "in progress") {
      return status == "committed";
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));  // it may be starting again
  }
  throw TsError("TS database '" + name + "' was lost while it stored a record: the record may be there, or not");
}

void PostgreSqlConnection::StartOperation() { LimitTo(longestOperation); }

void PostgreSqlConnection::LimitTo(std::chrono::milliseconds longest) {
  deadline.reset();
  deadline = std::make_unique<SocketDeadline>(PQsocket(Handle()), longest);
}

// The lock before the number: who seals waits for it, and then no lower number can appear any more.
long long PostgreSqlConnection::NextKey(const std::string& table, const std::string& column) {
  long long key = 0;
  Execute(Sql(),
          "LOCK TABLE " + table + " IN ROW EXCLUSIVE MODE; SELECT nextval(pg_get_serial_sequence('" + table + "', '" +
              column + "'))",
          soci::into(key));
  return key;
}

void PostgreSqlConnection::HoldActivities() { Execute(Sql(), activitiesLock); }

// Whoever makes or brings up the store may take longer than an operation; the hosts that begin meanwhile wait for it.
void PostgreSqlConnection::HoldSchema() {
  Execute(Sql(), std::string("SET LOCAL statement_timeout = '30s'; SET LOCAL lock_timeout = '30s'; ") + schemaLock);
}

void PostgreSqlConnection::Insert(const Types::InstrumentEvent& event, long long session,
                                  std::optional<long long> execution, std::optional<long long> configuration) {
  InsertEvent(Sql(), event, session, execution, configuration);
}

void PostgreSqlConnection::MakeRoom() {
  Execute(Sql(), "SELECT make_partitions()");
  partitionsDue = Clock::now() + std::chrono::hours(24);
}

// A server that ended said so before it closed the connection: the first look finds the words, the second the end.
bool PostgreSqlConnection::IsUsable() {
  return PQconsumeInput(Handle()) == 1 && PQconsumeInput(Handle()) == 1 && !IsLost();
}

bool PostgreSqlConnection::IsOutsideTransaction() { return PQtransactionStatus(Handle()) == PQTRANS_IDLE; }

bool PostgreSqlConnection::IsLost() { return PQstatus(Handle()) != CONNECTION_OK; }

TsError PostgreSqlConnection::ErrorOf(const soci::soci_error& reason) {
  if (IsLost()) {
    const bool silent = deadline && deadline->HasPassed();
    return TsError("TS database '" + name + "' was lost before this record was stored: " +
                   (silent ? "it gave no answer in time" : ReasonOf(reason)));
  }
  if (StateOf(reason) == "42501") {
    return TsError("TS database '" + name + "' does not let this role do that: " + ReasonOf(reason) +
                   "; expected its owner to run 'velora-ts prepare --hosts ROLE'");
  }
  return TsError("TS database '" + name + "': " + ReasonOf(reason));
}

Connection::Contents PostgreSqlConnection::FindTables() {
  long long tables = 0;
  long long own = 0;
  Execute(Sql(),
          "SELECT COUNT(*), COUNT(*) FILTER (WHERE relname = 'ts_schema') FROM pg_class c "
          "WHERE relkind IN ('r', 'p', 'v') AND relnamespace = to_regnamespace(quote_ident(current_schema())) AND NOT "
          "EXISTS (SELECT FROM pg_depend WHERE classid = CAST('pg_class' AS regclass) AND objid = c.oid "
          "AND deptype = 'e')",  // which belong to extensions
          soci::into(tables), soci::into(own));
  return {tables != 0, own != 0};
}

void PostgreSqlConnection::BringUpSchema(int from) { BringUpPostgreSqlSchema(Sql(), from); }

pg_conn* PostgreSqlConnection::Handle() {
  return static_cast<soci::postgresql_session_backend*>(Sql().get_backend())->conn_;
}

}  // namespace Quor::TolvaServices::Local

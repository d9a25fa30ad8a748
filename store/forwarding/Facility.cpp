#include "store/forwarding/Facility.h"

#include "store/database/PostgreSqlStart.h"
#include "store/forwarding/Forwarder.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/BringUp.h"
#include "store/schema/StoreNumbers.h"
#include "store/transfer/LastRow.h"
#include "store/transfer/RowBytes.h"
#include "store/transfer/TakenStore.h"
#include "store/values/Json.h"

namespace Velora::Store {
namespace {

using Clock = PostgreSqlConnection::Clock;

constexpr std::chrono::milliseconds longestAnswer{4500};  // as for an operation of a host
constexpr std::chrono::milliseconds untilTheServerGaveUp{500};

constexpr const char* insufficientPrivilege = "42501";
constexpr const char* raisedByATrigger = "P0001";
constexpr std::string_view integrityClass = "23";
constexpr std::string_view dataClass = "22";  // values that no host can have recorded

// A connection is idle for days, and its lock must not outlive a forwarder whose computer or network has ended.
constexpr const char* beNoticedSoon =
    "SELECT set_config('application_name', 'Velora, forwarding', false), set_config('idle_session_timeout', '0', "
    "false), set_config('idle_in_transaction_session_timeout', '10s', false), set_config('tcp_keepalives_idle', '10', "
    "false), set_config('tcp_keepalives_interval', '5', false), set_config('tcp_keepalives_count', '3', false), "
    "set_config('tcp_user_timeout', '25s', false)";

std::optional<std::string> OrNull(const std::string& text) { return text.empty() ? std::nullopt : std::optional(text); }

}  // namespace

Facility::Facility(const std::string& address) : connection(ConnectToServer(address)) {
  connection.ExplainErrorsBy([this](const DatabaseError& error) { Explain(error); });
  connection.LimitTo(Clock::now() + longestAnswer);
  Configure();
  ExpectThisVersion();
}

void Facility::Explain(const DatabaseError& error) const {
  const std::string store = "TS store '" + Name() + "'";
  if (error.code == insufficientPrivilege) {
    throw Refused(store + " does not let this role forward: " + error.reason +
                  "; expected its owner to run 'velora-ts prepare --hosts ROLE'");
  }
  if (error.code.starts_with(integrityClass) || error.code.starts_with(dataClass) || error.code == raisedByATrigger) {
    throw Refused(store + " refuses these records: " + error.reason);
  }
  throw NotReachable(store + (connection.IsLost() ? " was lost: " : " takes no records now: ") + error.reason);
}

void Facility::Configure() {
  connection.RunScript(findStore);
  connection.RunScript(configure);
  connection.RunScript(beNoticedSoon);
  if (const auto whyNot = connection.Find<std::string>(askWhyNot); whyNot && !whyNot->empty()) {
    throw NotReachable("TS store '" + Name() + "' takes no records now: " + *whyNot);
  }
}

void Facility::ExpectThisVersion() {
  if (!connection.Find<bool>("SELECT to_regclass('ts_schema') IS NOT NULL").value()) {
    throw Refused("'" + Name() + "' has no TS store; expected one: run velora-ts prepare there");
  }
  const StoreVersion version = VersionOf(connection);
  if (version.number < schemaVersion || !version.IsUsable()) {
    throw Refused("TS store '" + Name() + "' has a schema of version " + std::to_string(version.number) +
                  "; expected version " + std::to_string(schemaVersion) +
                  (version.IsUsable() ? ": run velora-ts prepare there first" : ": a newer program made it"));
  }
}

void Facility::Take(const Reader& file) {
  connection.LimitTo(Clock::now() + longestAnswer);
  guid = GuidOf(file.Sql());
  if (const auto known = NumberIn(connection, guid)) {
    if (*known == thisStore) {
      throw Refused("TS store '" + file.Name() + "' is the store '" + Name() + "' itself; expected another one");
    }
    TakeLockOf(*known);
  } else {
    ExpectNoSessionOf(file);
    Join(file);
  }
}

long long Facility::Shift() const { return ShiftOf(number); }

// Two copies of a store of an earlier version have got different guids, but their sessions are the same.
void Facility::ExpectNoSessionOf(const Reader& file) {
  std::string guids = "[";
  for (Rows rows(file, "SELECT guid FROM sessions"); rows.Next();) {
    guids += guids.size() > 1 ? "," : "";
    AppendText(guids, rows.Text(0));
  }
  const auto there = connection.Find<std::string>(
      "SELECT guid FROM sessions WHERE guid IN (SELECT json_array_elements_text(CAST(?1 AS json))) LIMIT 1",
      guids + "]");
  if (there) {
    throw Refused("TS store '" + file.Name() + "' has the session " + *there + ", which '" + Name() +
                  "' has from another store: one is a copy of the other; expected records that are not there yet: "
                  "velora-ts rotate begins a new file");
  }
}

void Facility::Join(const Reader& file) {
  connection.RunScript("BEGIN");
  TakeLockOf(NumberFor(Database::Kind::PostgreSql, connection, guid));
  if (!NumberIn(connection, guid)) {  // else another program was first
    const Table& stores = TableNamed("stores");
    Copy(stores, beginOfRows + RowWith(file.Sql(), stores, thisStore, Shift()) + endOfRows);
  }
  connection.RunScript("COMMIT");
}

void Facility::TakeLockOf(long long store) {
  if (!TakeLock(connection, store)) {
    throw AnotherForwarder(
        "another program adds records of this store to '" + Name() +
        "'; expected one at a time. If that one was cut off, the server notices it in half a minute");
  }
  number = store;
}

std::string Facility::RowOf(const Table& table, long long row) {
  connection.LimitTo(Clock::now() + longestAnswer);
  connection.RunScript("BEGIN");
  std::string bytes = RowWith(connection, table, row + Shift(), 0);
  connection.RunScript("COMMIT");
  return bytes;
}

void Facility::SendQuestion(Marks& marks) {
  connection.SendKept(
      MarksQuestion(schemaVersion, number) + " FROM stores WHERE store_id = $1 AND guid = $2",
      {std::to_string(Shift() + thisStore), guid}, [&marks](const PostgreSqlConnection::Answer& answer) {
        int column = 0;
        for (const Table& table : MarkedTables(schemaVersion)) {
          marks[table.name] = PQntuples(answer.get()) == 0 ? 0 : std::stoll(PQgetvalue(answer.get(), 0, column++));
        }
      });
}

void Facility::SendNote(const Waiting& waiting) {
  connection.SendKept("SELECT note_arrival($1, $2, $3)",
                      {std::to_string(number), std::to_string(waiting.rows), OrNull(waiting.since)});
}

Marks Facility::Reached() {
  Marks marks;
  connection.LimitTo(Clock::now() + longestAnswer);
  SendQuestion(marks);
  connection.Settle();
  return marks;
}

Marks Facility::Note(const Waiting& waiting) {
  Marks marks;
  connection.LimitTo(Clock::now() + longestAnswer);
  SendQuestion(marks);
  SendNote(waiting);
  connection.Settle();
  return marks;
}

bool Facility::Add(const Portion& portion, const Marks& from, const Waiting& left, std::chrono::milliseconds longest) {
  Marks there;
  connection.LimitTo(Clock::now() + longest + untilTheServerGaveUp);
  connection.Send("BEGIN", {});
  connection.Send("SET LOCAL statement_timeout = " + std::to_string(longest.count()), {});
  SendQuestion(there);
  SendNote(left);
  connection.Settle();
  if (there != from) {
    connection.RunScript("ROLLBACK");
    return false;
  }
  for (const Portion::TableRows& rows : portion.tables) {
    Copy(rows.table, rows.bytes);
  }
  connection.RunScript("COMMIT");
  return true;
}

void Facility::Copy(const Table& table, std::string_view rows) {
  connection.BeginSending("COPY " + table.name + " (" + table.ColumnList() + ") FROM STDIN (FORMAT binary)");
  connection.Send(rows);
  connection.EndSending();
}

}  // namespace Velora::Store

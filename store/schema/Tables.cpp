#include "store/schema/Tables.h"

#include <algorithm>
#include <stdexcept>

namespace Velora::Store {
namespace {

constexpr const char* asTheActivitiesFile = "as the activities file has them";
constexpr const char* ofInstrumentAndComputer = "what was known of instrument and computer";
constexpr const char* keptForTs = "kept for TS; empty";
constexpr const char* saidAtItsBeginning = "what the host said when it began it; mostly empty";

Column Key(const char* name) { return {name, Type::Key, "key"}; }
Column Guid(const char* meaning = "identity") { return {.name = "guid", .meaning = meaning, .isUnique = true}; }
Column Text(const char* name, const char* meaning) { return {name, Type::Text, meaning}; }
Column Integer(const char* name, const char* meaning) { return {name, Type::Integer, meaning}; }
Column Number(const char* name, const char* meaning) { return {name, Type::Number, meaning}; }
Column Reference(const char* name, const char* table, const char* meaning) {
  return {name, Type::Integer, meaning, table};
}
Column OrNull(Column column) {
  column.mayBeNull = true;
  return column;
}
Column Leading(Column column) {
  column.leadsRecord = true;
  return column;
}

std::vector<Table> Describe() {
  return {
      {.name = "ts_schema",
       .record = "schema",
       .columns = {Key(undeclaredKey),
                   Integer("version", "a version of this schema that the store has had; the highest one holds: 3"),
                   Text("created_at", "when the store got it")},
       .hostsAdd = false},
      {.name = "sessions",
       .record = "session",
       .columns = {Key("session_id"), Guid("the session's identity"),
                   Text("instrument", "whose records these are: the name from `TSAL.config`, or the computer's"),
                   Text("host", "the computer's name"), Text("began_at", "when the session began"),
                   Text("text1", saidAtItsBeginning), Text("text2", saidAtItsBeginning),
                   Text("text3", saidAtItsBeginning)}},
      {.name = "activities",
       .record = "activity",
       .columns = {Key("activity_id"), Guid(), Text("name", asTheActivitiesFile),
                   Text("description", asTheActivitiesFile)},
       .uniqueTogether = {"name", "description"}},
      {.name = "activity_versions",
       .record = "version",
       .columns = {Key("version_id"), Guid(),
                   Reference("activity_id", "activities", "the activity that it is a version of"),
                   Text("name", asTheActivitiesFile), Text("version", asTheActivitiesFile),
                   Text("description", asTheActivitiesFile)},
       .uniqueTogether = {"activity_id", "name", "version", "description"}},
      {.name = "registrations",
       .record = "registration",
       .columns = {Key(undeclaredKey), Reference("session_id", "sessions", "the session that registered"),
                   Reference("version_id", "activity_versions", "what it registered; a process registers a file once"),
                   Text("file", "from which activities file"), Text("registered_at", "when")},
       .indexes = {{"registrations_by_session", {"session_id"}}}},
      {.name = "configurations",
       .record = "configuration",
       .columns = {Key("configuration_id"), Guid(),
                   Reference("session_id", "sessions", "in which session it was saved"), Text("saved_at", "when"),
                   Text("configuration_text", "the whole instrument configuration file"), Text("text2", keptForTs),
                   Text("vendor_name", ofInstrumentAndComputer), Text("host_name", ofInstrumentAndComputer),
                   Text("option_text", ofInstrumentAndComputer), Text("instrument_class", ofInstrumentAndComputer),
                   Text("model_name", ofInstrumentAndComputer), Text("text8", keptForTs), Text("text9", keptForTs)},
       .indexes = {{"configurations_by_time", {"saved_at"}}}},
      {.name = "executions",
       .record = "execution",
       .columns = {Key("execution_id"), Guid(),
                   OrNull(Reference("parent_id", "executions", "the execution that it belongs to; null at the top")),
                   Reference("root_id", "executions", "the topmost execution of its tree; its own key at the top"),
                   Reference("session_id", "sessions", "the session that created it"),
                   OrNull(Reference("version_id", "activity_versions", "the activity version that ran; null for none")),
                   Text("node", "where it ran, in the host's words"),
                   Text("description", "what it was, in the host's words"),
                   Integer("kind", "TS's own number; 5 at the top"),
                   Text("started_at", "the time of its first status")},
       .indexes = {{"executions_by_parent", {"parent_id", "started_at"}},
                   {"executions_by_root", {"root_id"}},
                   {"executions_by_time", {"started_at"}}}},
      {.name = "statuses",
       .record = "status",
       .columns = {Key("status_id"), Reference("execution_id", "executions", "whose status it is"),
                   Reference("session_id", "sessions", "the session that set it"),
                   Integer("code", "the status: 4 running, 14 done"), Text("at", "since when")},
       .indexes = {{"statuses_by_execution", {"execution_id", "status_id"}}}},
      {.name = "events",
       .record = "event",
       .columns = {Key("event_id"), Reference("session_id", "sessions", "the session that saved it"),
                   Leading(OrNull(
                       Reference("execution_id", "executions", "the execution that it belongs to; null for none"))),
                   OrNull(Reference("configuration_id", "configurations",
                                    "the instrument configuration in force; null before the first")),
                   Text("name", "what happened"), Text("at", "when")},
       .indexes = {{"events_by_execution", {"execution_id", "event_id"}}, {"events_by_time", {"at"}}},
       .isByMonth = true},
      {.name = "parameters",
       .record = "parameter",
       .columns = {Reference("event_id", "events", "whose parameter it is"),
                   Integer("position", "its place among them, from 1 on"),
                   Text("name", "its name; one event may use a name more than once"),
                   Text("kind", "`text`, `int`, `double` or `bool`"), OrNull(Text("value_text", "the value of a text")),
                   OrNull(Number("value_number", "the value of the other kinds"))},
       .primaryKey = {"event_id", "position"},
       .isByMonth = true},
      {.name = "seals",
       .record = "seal",
       .columns = {Key("seal_id"),
                   OrNull(Text("run", "the guid of the run that was sealed; null for what belongs to no run")),
                   Text("sealed_at", "when"),
                   Text("up_to", "the highest key of each table at that time: what came later is not covered"),
                   Text("counts", "how many records of each kind are covered"),
                   Text("content_hash", "SHA-256 of their canonical form (`docs/record-format.md`)"),
                   Text("previous_hash", "`seal_hash` of the seal before"),
                   Integer("schema_version", "with which schema it was made"),
                   Text("tool_version", "with which `velora-ts`"), Text("seal_hash", "SHA-256 of the seal itself")},
       .indexes = {{"seals_by_run", {"run", "seal_id"}}},
       .hostsAdd = false,
       .since = 2},
  };
}

}  // namespace

const std::vector<Table>& Tables() {
  static const std::vector<Table> tables = Describe();
  return tables;
}

const Table& TableNamed(const std::string& name) {
  for (const Table& table : Tables()) {
    if (table.name == name) {
      return table;
    }
  }
  throw std::logic_error("a store has no table '" + name + "'");
}

std::vector<Table> TablesOf(int version) {
  std::vector<Table> tables = Tables();
  std::erase_if(tables, [version](const Table& table) { return table.since > version; });
  return tables;
}

std::vector<Table> TablesBesideEvents() {
  std::vector<Table> tables = Tables();
  std::erase_if(tables, [](const Table& table) { return table.isByMonth; });
  return tables;
}

std::vector<std::string> HostTables() {
  std::vector<std::string> names;
  for (const Table& table : Tables()) {
    if (table.hostsAdd) {
      names.push_back(table.name);
    }
  }
  return names;
}

}  // namespace Velora::Store

#include "store/schema/Tables.h"

#include "store/schema/SessionLocks.h"

#include <algorithm>
#include <stdexcept>

namespace Velora::Store {
namespace {

constexpr const char* asInTheActivitiesFile = "as in the activities file";
constexpr const char* nameOfTheComputer = "the name of the computer";
constexpr const char* knownOfTheInstrument = "what was known about the instrument";
constexpr const char* reserved = "reserved for TS; empty";
constexpr const char* textOfTheHost = "texts of the host for the session; mostly empty";

Column Key(const char* name, const char* meaning = "key") { return {name, Type::Key, meaning}; }
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
                   Integer("version", "a version of the schema that the store has; negative for one that only adds"),
                   Text("created_at", "when the store got it")},
       .hostsAdd = false},
      {.name = "sessions",
       .record = "session",
       .columns = {Key("session_id"), Guid("the session's identity"),
                   Text("instrument", "the name of the instrument, from `TSAL.config`"),
                   Text("host", nameOfTheComputer), Text("began_at", "when the session began"),
                   Text("text1", textOfTheHost), Text("text2", textOfTheHost), Text("text3", textOfTheHost)},
       .indexes = {{.name = "sessions_by_instrument", .columns = {"instrument"}, .since = 3, .ofAnyText = true}}},
      {.name = "activities",
       .record = "activity",
       .columns = {Key("activity_id"), Text("guid", "identity"), Text("name", asInTheActivitiesFile),
                   Text("description", asInTheActivitiesFile)},
       .uniquePerStore = {{"guid"}, {"name", "description"}}},
      {.name = "activity_versions",
       .record = "version",
       .columns = {Key("version_id"), Text("guid", "identity"),
                   Reference("activity_id", "activities", "the activity to which the version belongs"),
                   Text("name", asInTheActivitiesFile), Text("version", asInTheActivitiesFile),
                   Text("description", asInTheActivitiesFile)},
       .uniqueTogether = {"activity_id", "name", "version", "description"},
       .uniquePerStore = {{"guid"}}},
      {.name = "registrations",
       .record = "registration",
       .columns = {Key(undeclaredKey), Reference("session_id", "sessions", "the session that registered the version"),
                   Reference("version_id", "activity_versions",
                             "the version; a process registers those of a file once"),
                   Text("file", "the activities file that names it"), Text("registered_at", "when it was registered")},
       .indexes = {{"registrations_by_session", {"session_id"}}}},
      {.name = "configurations",
       .record = "configuration",
       .columns = {Key("configuration_id"), Guid(),
                   Reference("session_id", "sessions", "the session in which it was saved"),
                   Text("saved_at", "when it was saved"),
                   Text("configuration_text", "the whole instrument configuration file"), Text("text2", reserved),
                   Text("vendor_name", knownOfTheInstrument), Text("host_name", nameOfTheComputer),
                   Text("option_text", knownOfTheInstrument), Text("instrument_class", knownOfTheInstrument),
                   Text("model_name", knownOfTheInstrument), Text("text8", reserved), Text("text9", reserved)},
       .indexes = {{"configurations_by_time", {"saved_at"}}}},
      {.name = "executions",
       .record = "execution",
       .columns = {Key("execution_id"), Guid(),
                   OrNull(Reference("parent_id", "executions", "the execution to which it belongs; null at the top")),
                   Reference("root_id", "executions", "the topmost execution of its tree; its own key at the top"),
                   Reference("session_id", "sessions", "the session that created it"),
                   OrNull(Reference("version_id", "activity_versions",
                                    "the activity version that ran; null if the activities file does not have it")),
                   Text("node", "where it ran, as the host said"), Text("description", "what it was, as the host said"),
                   Integer("kind", "a number of TS; 5 at the top"), Text("started_at", "the time of its first status")},
       .indexes = {{"executions_by_parent", {"parent_id", "started_at"}},
                   {"executions_by_root", {"root_id"}},
                   {"executions_by_time", {"started_at"}},
                   {.name = "runs_by_node", .columns = {"node"}, .ofRuns = true, .since = 3, .ofAnyText = true},
                   {.name = "runs_by_session", .columns = {"session_id", "started_at"}, .ofRuns = true, .since = 3}}},
      {.name = "statuses",
       .record = "status",
       .columns = {Key("status_id"), Reference("execution_id", "executions", "the execution whose status it is"),
                   Reference("session_id", "sessions", "the session that set it"),
                   Integer("code", "the status: 4 running, 14 done"), Text("at", "since when it has this status")},
       .indexes = {{"statuses_by_execution", {"execution_id", "status_id"}}}},
      {.name = "events",
       .record = "event",
       .columns = {Key("event_id"), Reference("session_id", "sessions", "the session that saved it"),
                   Leading(OrNull(Reference("execution_id", "executions",
                                            "the execution to which it belongs; null outside every run"))),
                   OrNull(Reference("configuration_id", "configurations",
                                    "the instrument configuration in force; null before the first")),
                   Text("name", "what happened"), Text("at", "when it happened")},
       .indexes = {{"events_by_execution", {"execution_id", "event_id"}}, {"events_by_time", {"at"}}},
       .isByMonth = true},
      {.name = "parameters",
       .record = "parameter",
       .columns = {Reference("event_id", "events", "the event to which it belongs"),
                   Integer("position", "its place in the event, from 1"),
                   Text("name", "its name; one event can use a name more than once"),
                   Text("kind", "`text`, `int`, `double` or `bool`"), OrNull(Text("value_text", "the value of a text")),
                   OrNull(Number("value_number", "the value of the other kinds"))},
       .primaryKey = {"event_id", "position"},
       .isByMonth = true},
      {.name = "notes",
       .record = "note",
       .columns = {Key("note_id"), Reference("root_id", "executions", "the topmost execution of the run"),
                   Text("author", "who wrote it"), Text("kind", "`cause`, `review` or `tag`"),
                   Text("text", "what it says"), Text("at", "when it was written")},
       .indexes = {{"notes_by_root", {"root_id", "note_id"}}},
       .since = 3},
      {.name = "seals",
       .record = "seal",
       .columns = {Key("seal_id"),
                   OrNull(Text("run", "the guid of the sealed run; null for records outside every run")),
                   Text("sealed_at", "when it was sealed"),
                   Text("up_to", "the highest key of each table at that time; later records are not covered"),
                   Text("counts", "how many records of each kind are covered"),
                   Text("content_hash", "SHA-256 of their canonical form (`docs/record-format.md`)"),
                   Text("previous_hash", "`seal_hash` of the seal before"),
                   Integer("schema_version", "the version of the schema with which it was made"),
                   Text("tool_version", "the version of `velora-ts` that made it"),
                   Text("seal_hash", "SHA-256 of the seal itself")},
       .indexes = {{"seals_by_run", {"run", "seal_id"}}},
       .hostsAdd = false,
       .since = 2},
      {.name = "tree_leaves",
       .record = "leaves",
       .columns = {Key("leaf_id", "the number of the last of these leaves of the tree, from 1"),
                   Integer("seal", "the number of the seal that they belong to"),
                   Text("hashes", "the hashes of at most 256 leaves that follow one another, joined, in Base64")},
       .hostsAdd = false,
       .since = 3},
      {.name = "tree_parts",
       .record = "part",
       .columns = {Key("part_id", "the number of the part of the tree, from 1"),
                   Text("hash", "the root of its 256 leaves, in Base64")},
       .hostsAdd = false,
       .since = 3},
      {.name = "signatures",
       .record = "signature",
       .columns = {Key("signature_id"), Integer("seal", "the number of the seal that is signed, with all before it"),
                   Text("kind", "`note` or `ssh`"), Text("text", "the signature, as `docs/integrity.md` describes it")},
       .hostsAdd = false,
       .since = 3},
      {.name = "timestamps",
       .record = "timestamp",
       .columns = {Key("timestamp_id"), Integer("seal", "the number of the seal that existed then, with all before it"),
                   Text("token", "what a time-stamping authority signed (RFC 3161), in Base64")},
       .hostsAdd = false,
       .since = 3},
      {.name = "stores",
       .record = "store",
       .columns = {Key("store_id"), Guid("the identity of a store: its own, or of one whose records it has"),
                   Text("made_at", "when that store got it"),
                   OrNull(Text("previous_guid", "the guid of the store that it continues; null for none")),
                   OrNull(Text("previous_hash", "`seal_hash` of the newest seal of that store"))},
       .hostsAdd = false,
       .since = 3},
  };
}

/// Makes what is unique per store unique in a whole table.
void MakeUnique(Table& table) {
  for (const std::vector<std::string>& names : table.uniquePerStore) {
    if (names.size() > 1) {
      table.uniqueTogether = names;
      continue;
    }
    for (Column& column : table.columns) {
      column.isUnique = column.isUnique || column.name == names.front();
    }
  }
  table.uniquePerStore.clear();
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
  if (version < 3) {
    std::for_each(tables.begin(), tables.end(), &MakeUnique);
  }
  return tables;
}

std::vector<Table> TablesBesideEvents() {
  std::vector<Table> tables = Tables();
  std::erase_if(tables, [](const Table& table) { return table.isByMonth; });
  return tables;
}

std::vector<std::string> RecordedByHosts() {
  std::vector<std::string> names;
  for (const Table& table : Tables()) {
    if (table.hostsAdd) {
      names.push_back(table.name);
    }
  }
  return names;
}

std::vector<std::string> HostTables() {
  std::vector<std::string> names = {SessionLocks().name};
  for (const Table& table : Tables()) {
    names.push_back(table.name);
  }
  return names;
}

std::vector<std::string> HostFunctions() { return {"make_partitions()", "note_arrival(bigint, bigint, text)"}; }

}  // namespace Velora::Store

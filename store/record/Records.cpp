#include "store/record/Records.h"

#include "store/reading/EventKeys.h"
#include "store/reading/Notes.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/reading/TableIn.h"
#include "store/schema/Tables.h"
#include "store/values/Json.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Velora::Store {

namespace {

constexpr int format = 1;

// The name of a column that is not written begins with this mark (Rows::AppendValue()).
constexpr char keyMark = '_';

Kind KindNamed(std::string_view name) {
  return static_cast<Kind>(std::find(kindNames.begin(), kindNames.end(), name) - kindNames.begin());
}

// Executions stand where their run has them, and before no record that refers to them.
bool IsWrittenBefore(const Column& reference) {
  return !reference.refersTo.empty() && reference.refersTo != TableOf(Executions).name;
}

// A reference is written as the guid of the record; if there is no such row, because of another program, as its key.
std::string ValueOf(const Column& column) {
  std::string value = "v." + column.name;
  if (column.refersTo.empty()) {
    return value;
  }
  return "COALESCE((SELECT guid FROM " + column.refersTo + " WHERE " + TableNamed(column.refersTo).Key() + " = " +
         value + "), CAST(" + value + " AS TEXT))";
}

/// How a row of a kind is asked for and written.
struct Form {
  std::string columns;              ///< What is asked of the row, which is called v: the fields, then the references.
  std::string begin;                ///< The beginning of the record.
  std::vector<std::string> fields;  ///< The beginning of each field.
  std::vector<Kind> references;     ///< The kinds of the records to which it refers, and which stand before it.
};

Form MakeForm(Kind kind) {
  Form form;
  form.begin = std::string("{\"record\":\"") + kindNames[kind] + '"';
  std::vector<std::string> columns;
  std::vector<std::string> keys;
  for (const Column& column : TableOf(kind).RecordColumns()) {
    columns.push_back(ValueOf(column) + " AS " + column.Field());
    form.fields.push_back(",\"" + column.Field() + "\":");
    if (IsWrittenBefore(column)) {
      const std::string& record = TableNamed(column.refersTo).record;
      keys.push_back("v." + column.name + " AS " + keyMark + record);
      form.references.push_back(KindNamed(record));
    }
  }
  columns.insert(columns.end(), keys.begin(), keys.end());
  form.columns = Listed(columns);
  return form;
}

const Form& FormOf(Kind kind) {
  static const std::array<Form, kindCount> forms = [] {
    std::array<Form, kindCount> all;
    std::transform(kinds.begin(), kinds.end(), all.begin(), &MakeForm);
    return all;
  }();
  return forms[kind];
}

// The condition of the rows with keys above one and up to another, in their order.
std::string Between(const std::string& key) { return key + " > ?1 AND " + key + " <= ?2 ORDER BY " + key; }

Rows Question(const Reader& store, Kind kind, const std::string& which) {
  return {store, "SELECT " + FormOf(kind).columns + " FROM " + TableIn(store, TableOf(kind)) + " v WHERE " + which};
}

EventRows EventsWhere(const Reader& store, const std::string& condition) {
  return {store, FormOf(Events).columns, TableOf(Events).name + " v", condition};
}

bool IsOnServer(const Reader& store) { return store.Where().kind == Database::Kind::PostgreSql; }

/// The events of an execution, ?1, with keys above one, ?2, and up to another, ?3. A server does not conclude from the
/// keys of events in which months the parameters are. SQLite could begin with the parameters if it were told.
EventRows EventsOfExecution(const Reader& store) {
  const std::string ofEvent = "p.event_id = v.event_id";
  return {store,
          FormOf(Events).columns,
          TableOf(Events).name + " v",
          "v.execution_id = ?1 AND v.event_id > ?2 AND v.event_id <= ?3",
          "v.event_id",
          IsOnServer(store) ? ofEvent + " AND p.event_id > ?2 AND p.event_id <= ?3" : ofEvent};
}

std::string Member(const char* name, const Rows& value) {
  std::string member = std::string(",\"") + name + "\":";
  value.AppendValue(member, 0);
  return member;
}

std::string Header(const char* part) {
  return std::string("{\"record\":\"") + part + "\",\"format\":" + std::to_string(format);
}

std::string Header(const char* part, const char* name, const Rows& value) { return Header(part) + Member(name, value); }

/// A query for the highest key of a kind in a range.
std::string Highest(const Reader& store, Kind kind, const KeyRange& range) {
  const std::string& key = TableOf(kind).Key();
  const std::string above = range.after < 0 ? "" : key + " > " + std::to_string(range.after) + " AND ";
  return "(SELECT MAX(" + key + ") FROM " + TableIn(store, TableOf(kind)) + " v WHERE " + above + key +
         " <= " + std::to_string(range.upTo) + ")";
}

}  // namespace

const Table& TableOf(Kind kind) {
  for (const Table& table : Tables()) {
    if (table.record == kindNames[kind]) {
      return table;
    }
  }
  throw std::logic_error(std::string("no table has the records '") + kindNames[kind] + "'");
}

PerKind HighestNumbers(const Reader& store, long long origin) {
  std::vector<std::string> highest;
  for (const Kind kind : kinds) {
    std::vector<std::string> found = {"0"};
    for (const KeyRange& range : KeysOf(origin)) {
      found.insert(found.begin(), Highest(store, kind, range));
    }
    highest.push_back(kind == Parameters ? "0" : "COALESCE(" + Listed(found) + ")");
  }
  Rows rows(store, "SELECT " + Listed(highest));
  rows.Next();
  PerKind numbers{};
  for (const Kind kind : kinds) {
    numbers[kind] = std::max(rows.Integer(kind) - ShiftOf(origin), 0LL);
  }
  return numbers;
}

Records::Records(const Reader& store, long long origin, const PerKind& upTo, Sink sink)
    : store(store),
      origin(origin),
      upTo(upTo),
      sink(std::move(sink)),
      registrations(Question(store, Registrations, "session_id = ?1 AND rowid <= ?2 ORDER BY rowid")),
      executions(Question(store, Executions, "root_id = ?1 AND execution_id <= ?2 ORDER BY execution_id")),
      statuses(
          Question(store, Statuses, "execution_id = ?1 AND status_id > ?2 AND status_id <= ?3 ORDER BY status_id")),
      notes(Question(store, Notes, "root_id = ?1 AND note_id > ?2 AND note_id <= ?3 ORDER BY note_id")),
      events(EventsOfExecution(store)) {}

void Records::WriteRun(long long root, const PerKind& since) {
  Rows guid(store, "SELECT guid FROM executions WHERE execution_id = ?1");
  guid.Ask(root).Next();
  if (StoreOf(root) == origin) {
    BeginPart(Header("run", "guid", guid) + '}', true);
    WriteExecutions(root, since);
  } else {
    Rows own(store, "SELECT guid FROM " + TableIn(store, TableOf(Stores)) + " WHERE store_id = ?1");
    own.Ask(ShiftOf(origin) + 1).Next();
    BeginPart(Header("added", "run", guid) + Member("store", own) + '}', true);
  }
  WriteAll(Notes, notes.Ask(root, KeyAfter(Notes, since), KeyUpTo(Notes)));
}

void Records::WriteExecutions(long long root, const PerKind& since) {
  const long long after = KeyAfter(Executions, since);
  const long long afterStatus = KeyAfter(Statuses, since), upToStatus = KeyUpTo(Statuses);
  const auto [afterEvent, upToEvent] = EventKeys(root, since);
  for (executions.Ask(root, KeyUpTo(Executions)); executions.Next();) {
    const long long execution = executions.Integer(0);
    if (execution > after) {
      Write(Executions, executions);
    }
    WriteAll(Statuses, statuses.Ask(execution, afterStatus, upToStatus));
    WriteEvents(events.Ask(execution, afterEvent, upToEvent));
  }
}

void Records::WriteRest(const PerKind& since) {
  const auto writeAll = [&](Kind kind) {
    Rows rows = Question(store, kind, Between(TableOf(kind).Key()));
    for (const auto& [after, last] : KeysOf(origin, since[kind], upTo[kind])) {
      WriteAll(kind, rows.Ask(after, last));
    }
  };
  BeginPart(Header("rest") + '}', false);
  for (const Kind kind : {Schema, Sessions, Activities, Versions, Registrations, Configurations}) {
    writeAll(kind);
  }
  EventRows ofNoRun = EventsWhere(store, "v.execution_id IS NULL AND v.event_id > ?1 AND v.event_id <= ?2");
  for (const auto& [after, last] : KeysOf(origin, since[Events], upTo[Events])) {
    WriteEvents(ofNoRun.Ask(after, last));
  }
  for (const Kind kind : {Stores, Signatures, TimeStamps}) {
    writeAll(kind);
  }
}

void Records::BeginEventsOfNoRun() { BeginPart(Header("rest") + '}', true); }

KeyRange Records::EventKeys(long long root, const PerKind& since) const {
  return EventKeysOf(store, root, {KeyAfter(Events, since), KeyUpTo(Events)});
}

// The keys of an execution and of what belongs to it are of the same store, so that no key between two of one store is
// that of a row of another.
long long Records::KeyAfter(Kind kind, const PerKind& since) const {
  return origin == thisStore ? since[kind] : KeysOf(origin, since[kind]).front().after;
}

long long Records::KeyUpTo(Kind kind) const {
  return origin == thisStore ? upTo[kind] : KeysOf(origin, none[kind], upTo[kind]).front().upTo;
}

void Records::BeginPart(const std::string& header, bool references) {
  withReferences = references;
  counts = {};
  for (std::set<long long>& keys : written) {
    keys.clear();
  }
  sink(header + '\n');
}

void Records::WriteReferences(Kind kind, const Rows& rows) {
  if (!withReferences) {
    return;
  }
  int column = static_cast<int>(FormOf(kind).fields.size());
  for (const Kind reference : FormOf(kind).references) {
    if (!rows.IsNull(column)) {
      WriteOnce(reference, rows.Integer(column));
    }
    ++column;
  }
}

void Records::WriteOnce(Kind kind, long long key) {
  if (!written[kind].insert(key).second) {
    return;
  }
  auto question = byKey.find(kind);
  if (question == byKey.end()) {
    question = byKey.emplace(kind, Question(store, kind, TableOf(kind).Key() + " = ?1")).first;
  }
  WriteAll(kind, question->second.Ask(key));
  if (kind == Sessions) {
    WriteAll(Registrations, registrations.Ask(key, KeyUpTo(Registrations)));
  }
}

void Records::Write(Kind kind, const Rows& rows) {
  WriteReferences(kind, rows);
  BeginLine(kind, rows);
  EndLine();
}

void Records::WriteAll(Kind kind, Rows& rows) {
  while (rows.Next()) {
    Write(kind, rows);
  }
}

void Records::WriteEvents(EventRows& rows) {
  while (rows.Next()) {
    WriteEvent(rows);
  }
}

void Records::WriteEvent(EventRows& rows) {
  WriteReferences(Events, rows.Event());
  BeginLine(Events, rows.Event());
  line += ",\"parameters\":[";
  for (const char* separator = ""; rows.NextParameter(); separator = ",") {
    line += separator;
    AppendParameter(rows.Parameter());
  }
  line += ']';
  EndLine();
}

void Records::BeginLine(Kind kind, const Rows& rows) {
  ++counts[kind];
  line = FormOf(kind).begin;
  int column = 0;
  for (const std::string& field : FormOf(kind).fields) {
    line += field;
    if (column == 0) {
      AppendInteger(line, rows.Integer(0) - ShiftOf(origin));
    } else {
      rows.AppendValue(line, column);
    }
    ++column;
  }
}

void Records::EndLine() {
  line += "}\n";
  sink(line);
}

void Records::AppendParameter(const Rows& parameters) {
  ++counts[Parameters];
  line += "{\"position\":";
  parameters.AppendValue(line, 0);
  line += ",\"name\":";
  parameters.AppendValue(line, 1);
  line += ",\"kind\":";
  parameters.AppendValue(line, 2);
  line += ",\"value\":";
  AppendParameterValue(line, parameters);
  line += '}';
}

EventRows QueryEventsOfNoRun(const Reader& store) {
  return EventsWhere(store, "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2");
}

EventRows QueryEvent(const Reader& store) { return EventsWhere(store, "v.event_id = ?1"); }

std::vector<long long> StoresThatAddedTo(const Reader& store, long long root) {
  std::set<long long> stores;
  Rows notes(store, "SELECT note_id FROM " + NotesIn(store) + " n WHERE root_id = ?1");
  for (notes.Ask(root); notes.Next();) {
    stores.insert(StoreOf(notes.Integer(0)));
  }
  stores.erase(StoreOf(root));
  return {stores.begin(), stores.end()};
}

}  // namespace Velora::Store

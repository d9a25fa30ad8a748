#include "store/record/Records.h"

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

// The condition of the rows behind one number and up to another, in their order.
std::string Between(const std::string& key) { return key + " > ?1 AND " + key + " <= ?2 ORDER BY " + key; }

Rows Question(const Reader& store, Kind kind, const std::string& which) {
  return {store, "SELECT " + FormOf(kind).columns + " FROM " + TableIn(store, TableOf(kind)) + " v WHERE " + which};
}

EventRows EventsWhere(const Reader& store, const std::string& condition) {
  return {store, FormOf(Events).columns, TableOf(Events).name + " v", condition};
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

Numbers HighestNumbers(const Reader& store) {
  std::vector<std::string> highest(kindCount, "0");
  for (const Kind kind : kinds) {
    if (kind != Parameters) {
      highest[kind] = "(SELECT MAX(" + TableOf(kind).Key() + ") FROM " + TableIn(store, TableOf(kind)) + " v)";
    }
  }
  Rows rows(store, "SELECT " + Listed(highest));
  rows.Next();
  Numbers numbers{};
  for (const Kind kind : kinds) {
    numbers[kind] = rows.Integer(kind);
  }
  return numbers;
}

Records::Records(const Reader& store, const Numbers& upTo, Sink sink)
    : store(store),
      upTo(upTo),
      sink(std::move(sink)),
      registrations(Question(store, Registrations, "session_id = ?1 AND rowid <= ?2 ORDER BY rowid")),
      executions(Question(store, Executions, "root_id = ?1 AND execution_id <= ?2 ORDER BY execution_id")),
      statuses(
          Question(store, Statuses, "execution_id = ?1 AND status_id > ?2 AND status_id <= ?3 ORDER BY status_id")),
      notes(Question(store, Notes, "root_id = ?1 AND note_id > ?2 AND note_id <= ?3 ORDER BY note_id")),
      events(EventsWhere(store, "v.execution_id = ?1 AND v.event_id > ?2 AND v.event_id <= ?3")) {}

void Records::WriteRun(long long root, const Numbers& since) {
  Rows guid(store, "SELECT guid FROM executions WHERE execution_id = ?1");
  guid.Ask(root).Next();
  std::string header = "{\"record\":\"run\",\"format\":" + std::to_string(format) + ",\"guid\":";
  guid.AppendValue(header, 0);
  BeginPart(header + '}', true);
  for (executions.Ask(root, upTo[Executions]); executions.Next();) {
    const long long execution = executions.Integer(0);
    if (execution > since[Executions]) {
      Write(Executions, executions);
    }
    WriteAll(Statuses, statuses.Ask(execution, since[Statuses], upTo[Statuses]));
    WriteEvents(events.Ask(execution, since[Events], upTo[Events]));
  }
  WriteAll(Notes, notes.Ask(root, since[Notes], upTo[Notes]));
}

void Records::WriteRest(const Numbers& since) {
  BeginPart("{\"record\":\"rest\",\"format\":" + std::to_string(format) + '}', false);
  for (const Kind kind : {Schema, Sessions, Activities, Versions, Registrations, Configurations}) {
    WriteAll(kind, Question(store, kind, Between(TableOf(kind).Key())).Ask(since[kind], upTo[kind]));
  }
  EventRows ofNoRun = EventsWhere(store, "v.execution_id IS NULL AND v.event_id > ?1 AND v.event_id <= ?2");
  WriteEvents(ofNoRun.Ask(since[Events], upTo[Events]));
  WriteAll(Stores, Question(store, Stores, Between(TableOf(Stores).Key())).Ask(since[Stores], upTo[Stores]));
}

void Records::WriteEventsOfNoRun(const std::string& from, const std::string& before) {
  BeginPart("{\"record\":\"rest\",\"format\":" + std::to_string(format) + '}', true);
  EventRows ofNoRun = EventsWhere(store, "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2");
  WriteEvents(ofNoRun.Ask(from, before));
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
    WriteAll(Registrations, registrations.Ask(key, upTo[Registrations]));
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
}

void Records::BeginLine(Kind kind, const Rows& rows) {
  ++counts[kind];
  line = FormOf(kind).begin;
  int column = 0;
  for (const std::string& field : FormOf(kind).fields) {
    line += field;
    rows.AppendValue(line, column++);
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

}  // namespace Velora::Store

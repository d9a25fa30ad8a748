#include "store/record/Records.h"

#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/values/Json.h"

#include "store/Error.h"

#include <algorithm>
#include <utility>

namespace Velora::Store {

namespace {

constexpr int format = 1;

// A column whose name begins with this mark is not written: it has the key of a record to which this one refers, and
// the rest of its name is the kind of that record.
constexpr char keyMark = '_';

// A reference is written as the guid of the record; if there is no such row, because of another program, as its key.
#define GUID_OF(table, key, of) "COALESCE((SELECT guid FROM " table " WHERE " key " = " of "), CAST(" of " AS TEXT))"
#define SESSION GUID_OF("sessions", "session_id", "r.session_id") " AS session"

constexpr const char* sessionQuestion =
    "SELECT session_id AS number, guid, instrument, host, began_at, text1, text2, text3 FROM sessions ";
constexpr const char* registrationQuestion =
    "SELECT rowid AS number, " SESSION ", " GUID_OF("activity_versions", "version_id", "r.version_id") " AS version, "
    "file, registered_at, version_id AS _version FROM registrations r ";
constexpr const char* activityQuestion = "SELECT activity_id AS number, guid, name, description FROM activities ";
constexpr const char* versionQuestion =
    "SELECT version_id AS number, guid, " GUID_OF("activities", "activity_id", "r.activity_id") " AS activity, name, "
    "version, description, activity_id AS _activity FROM activity_versions r ";
constexpr const char* configurationQuestion =
    "SELECT configuration_id AS number, guid, " SESSION
    ", saved_at, configuration_text, text2, vendor_name, host_name, "
    "option_text, instrument_class, model_name, text8, text9, session_id AS _session FROM configurations r ";
constexpr const char* executionQuestion =
    "SELECT execution_id AS number, guid, " GUID_OF("executions", "execution_id", "r.parent_id") " AS parent, "
    GUID_OF("executions", "execution_id", "r.root_id") " AS root, " SESSION ", "
    GUID_OF("activity_versions", "version_id", "r.version_id") " AS version, node, description, kind, started_at, "
    "session_id AS _session, version_id AS _version FROM executions r ";
constexpr const char* statusQuestion = "SELECT status_id AS number, " GUID_OF(
    "executions", "execution_id", "r.execution_id") " AS execution, " SESSION
                                                    ", "
                                                    "code, at, session_id AS _session FROM statuses r ";
constexpr const char* eventColumns =
    "v.event_id AS number, " GUID_OF("executions", "execution_id", "v.execution_id") " AS execution, "
    GUID_OF("sessions", "session_id", "v.session_id") " AS session, "
    GUID_OF("configurations", "configuration_id", "v.configuration_id") " AS configuration, v.name, v.at, "
    "v.session_id AS _session, v.configuration_id AS _configuration";

#undef SESSION
#undef GUID_OF

Kind KindNamed(std::string_view name) {
  return static_cast<Kind>(std::find(kindNames.begin(), kindNames.end(), name) - kindNames.begin());
}

Rows Question(const Reader& store, const char* columns, const std::string& which) { return {store, columns + which}; }

EventRows EventsWhere(const Reader& store, const std::string& condition) {
  return {store, eventColumns, "events v", condition};
}

}  // namespace

Numbers HighestNumbers(const Reader& store) {
  Rows rows(store,
            "SELECT (SELECT MAX(rowid) FROM ts_schema), (SELECT MAX(session_id) FROM sessions), "
            "(SELECT MAX(rowid) FROM registrations), (SELECT MAX(activity_id) FROM activities), "
            "(SELECT MAX(version_id) FROM activity_versions), (SELECT MAX(configuration_id) FROM configurations), "
            "(SELECT MAX(execution_id) FROM executions), (SELECT MAX(status_id) FROM statuses), "
            "(SELECT MAX(event_id) FROM events)");
  rows.Next();
  Numbers highest{};
  for (int kind = 0; kind < rows.Columns(); ++kind) {
    highest[static_cast<std::size_t>(kind)] = rows.Integer(kind);
  }
  return highest;
}

Records::Records(const Reader& store, const Numbers& upTo, Sink sink)
    : store(store),
      upTo(upTo),
      sink(std::move(sink)),
      session(Question(store, sessionQuestion, "WHERE session_id = ?1")),
      registrations(Question(store, registrationQuestion, "WHERE session_id = ?1 AND rowid <= ?2 ORDER BY rowid")),
      activity(Question(store, activityQuestion, "WHERE activity_id = ?1")),
      version(Question(store, versionQuestion, "WHERE version_id = ?1")),
      configuration(Question(store, configurationQuestion, "WHERE configuration_id = ?1")),
      executions(Question(store, executionQuestion, "WHERE root_id = ?1 AND execution_id <= ?2 ORDER BY execution_id")),
      statuses(Question(store, statusQuestion,
                        "WHERE execution_id = ?1 AND status_id > ?2 AND status_id <= ?3 ORDER BY status_id")),
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
      MentionReferences(executions);
      Write(Executions, executions);
    }
    for (statuses.Ask(execution, since[Statuses], upTo[Statuses]); statuses.Next();) {
      MentionReferences(statuses);
      Write(Statuses, statuses);
    }
    WriteEvents(events.Ask(execution, since[Events], upTo[Events]));
  }
}

void Records::WriteRest(const Numbers& since) {
  BeginPart("{\"record\":\"rest\",\"format\":" + std::to_string(format) + '}', false);
  static const struct {
    Kind kind;
    const char* columns;
    const char* which;
  } tables[] = {
      {Schema, "SELECT rowid AS number, version, created_at FROM ts_schema ", "rowid"},
      {Sessions, sessionQuestion, "session_id"},
      {Activities, activityQuestion, "activity_id"},
      {Versions, versionQuestion, "version_id"},
      {Registrations, registrationQuestion, "rowid"},
      {Configurations, configurationQuestion, "configuration_id"},
  };
  for (const auto& [kind, columns, key] : tables) {
    const std::string which = std::string("WHERE ") + key + " > ?1 AND " + key + " <= ?2 ORDER BY " + key;
    Rows rows = Question(store, columns, which);
    WriteAll(kind, rows.Ask(since[kind], upTo[kind]));
  }
  EventRows ofNoRun = EventsWhere(store, "v.execution_id IS NULL AND v.event_id > ?1 AND v.event_id <= ?2");
  WriteEvents(ofNoRun.Ask(since[Events], upTo[Events]));
}

void Records::WriteEventsOfNoRun(const std::string& from, const std::string& before) {
  BeginPart("{\"record\":\"rest\",\"format\":" + std::to_string(format) + '}', true);
  EventRows ofNoRun = EventsWhere(store, "+v.execution_id IS NULL AND v.at >= ?1 AND v.at < ?2");
  WriteEvents(ofNoRun.Ask(from, before));
}

void Records::BeginPart(const std::string& header, bool references) {
  withReferences = references;
  counts = {};
  for (std::set<long long>& keys : mentioned) {
    keys.clear();
  }
  sink(header + '\n');
}

void Records::MentionReferences(const Rows& from) {
  for (int column = 0; withReferences && column < from.Columns(); ++column) {
    if (*from.Name(column) == keyMark && !from.IsNull(column)) {
      Mention(KindNamed(from.Name(column) + 1), from.Integer(column));
    }
  }
}

void Records::Mention(Kind kind, long long key) {
  if (!mentioned[kind].insert(key).second) {
    return;
  }
  switch (kind) {
    case Sessions:
      WriteAll(Sessions, session.Ask(key));
      for (registrations.Ask(key, upTo[Registrations]); registrations.Next();) {
        MentionReferences(registrations);
        Write(Registrations, registrations);
      }
      break;
    case Versions:
      if (version.Ask(key).Next()) {
        MentionReferences(version);
        Write(Versions, version);
      }
      break;
    case Configurations:
      if (configuration.Ask(key).Next()) {
        MentionReferences(configuration);
        Write(Configurations, configuration);
      }
      break;
    default:
      WriteAll(Activities, activity.Ask(key));
  }
}

void Records::Write(Kind kind, const Rows& rows) {
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
    MentionReferences(rows.Event());
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
  line = "{\"record\":\"";
  line += kindNames[kind];
  line += '"';
  for (int column = 0; column < rows.Columns() && *rows.Name(column) != keyMark; ++column) {
    line += ",\"";
    line += rows.Name(column);
    line += "\":";
    rows.AppendValue(line, column);
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

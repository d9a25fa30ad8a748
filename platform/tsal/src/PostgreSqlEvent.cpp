#include "PostgreSqlEvent.h"

#include "Json.h"
#include "Statement.h"
#include "StoredParameter.h"
#include "StoredText.h"
#include "StoredTime.h"

namespace Quor::TolvaServices::Local {
namespace {

std::string ParametersAsJson(const Types::InstrumentEvent& event) {
  std::string json = "[";
  for (std::size_t position = 1; position <= event.Parameters.size(); ++position) {
    const StoredParameter parameter = ToStored(event, position);
    json += position == 1 ? "{\"position\":" : ",{\"position\":";
    json += std::to_string(position) + ",\"name\":";
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

void InsertEvent(soci::session& sql, const Types::InstrumentEvent& event, long long session,
                 std::optional<long long> execution, std::optional<long long> configuration) {
  const std::string name = ToStoredText(event.Name);
  const std::string at = ToStoredTime(event.TimeStamp);
  const std::string parameters = ParametersAsJson(event);
  const long long executionRow = execution.value_or(0);
  const long long configurationRow = configuration.value_or(0);
  soci::indicator hasExecution = execution ? soci::i_ok : soci::i_null;
  soci::indicator hasConfiguration = configuration ? soci::i_ok : soci::i_null;
  Execute(sql,
          "WITH stored AS (INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
          "VALUES (:session, :execution, :configuration, :name, :at) RETURNING event_id) "
          "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) "
          "SELECT event_id, p.* FROM stored, json_to_recordset(CAST(:parameters AS json)) AS p(position bigint, "
          "name text, kind text, value_text text, value_number double precision)",
          soci::use(session), soci::use(executionRow, hasExecution), soci::use(configurationRow, hasConfiguration),
          soci::use(name), soci::use(at), soci::use(parameters));
}

}  // namespace Quor::TolvaServices::Local

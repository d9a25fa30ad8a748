#include "RawTransaction.h"

#include <array>
#include <iterator>
#include <stdexcept>

RawTransaction::RawTransaction(const std::string& address, const std::string& execution)
    : connection(PQconnectdb(address.c_str()), &PQfinish) {
  Expect(PQstatus(connection.get()) == CONNECTION_OK);
  executionKey = Ask("SELECT execution_id FROM executions WHERE guid = '" + execution + "'");
  sessionKey = Ask("SELECT session_id FROM executions WHERE guid = '" + execution + "'");
  constexpr const char* statements[] = {
      "BEGIN",
      "WITH stored AS (INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
      "VALUES ($1, $2, NULL, 'Exposure', $3) RETURNING event_id) "
      "INSERT INTO parameters (event_id, position, name, kind, value_text, value_number) "
      "SELECT event_id, p.* FROM stored, (VALUES (1, 'Good', 'bool', NULL, CAST($4 AS double precision)), "
      "(2, 'TiltAngle', 'double', NULL, $5), (3, 'Shot', 'int', NULL, $6), (4, 'Note', 'text', $7, NULL)) AS p",
      "COMMIT"};
  for (std::size_t number = 0; number < std::size(statements); ++number) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> prepared(
        PQprepare(connection.get(), std::to_string(number).c_str(), statements[number], 0, nullptr), &PQclear);
    Expect(PQresultStatus(prepared.get()) == PGRES_COMMAND_OK);
  }
}

void RawTransaction::SaveEvent() {
  const std::array<const char*, 7> values{
      sessionKey.c_str(), executionKey.c_str(), "2026-11-25T21:55:03.123456Z", "1", "-59.98", "17", "after focusing"};
  Expect(PQenterPipelineMode(connection.get()) == 1);
  for (const char* const name : {"0", "1", "2"}) {
    const bool isEvent = *name == '1';
    Expect(PQsendQueryPrepared(connection.get(), name, isEvent ? static_cast<int>(values.size()) : 0,
                               isEvent ? values.data() : nullptr, nullptr, nullptr, 0) == 1);
  }
  Expect(PQpipelineSync(connection.get()) == 1);
  for (ExecStatusType status = PGRES_EMPTY_QUERY; status != PGRES_PIPELINE_SYNC;) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> answer(PQgetResult(connection.get()), &PQclear);
    status = answer ? PQresultStatus(answer.get()) : PGRES_EMPTY_QUERY;
    Expect(status == PGRES_EMPTY_QUERY || status == PGRES_COMMAND_OK || status == PGRES_PIPELINE_SYNC);
  }
  Expect(PQexitPipelineMode(connection.get()) == 1);
}

std::string RawTransaction::Ask(const std::string& statement) {
  const std::unique_ptr<PGresult, decltype(&PQclear)> answer(PQexec(connection.get(), statement.c_str()), &PQclear);
  Expect(PQntuples(answer.get()) == 1);
  return PQgetvalue(answer.get(), 0, 0);
}

void RawTransaction::Expect(bool good) {
  if (!good) {
    throw std::runtime_error(PQerrorMessage(connection.get()));
  }
}

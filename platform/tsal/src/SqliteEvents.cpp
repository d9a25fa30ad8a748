#include "SqliteEvents.h"

#include "StoredText.h"
#include "StoredTime.h"

#include <utility>

namespace Quor::TolvaServices::Local {

SqliteEvents::SqliteEvents(soci::session& sql)
    : sql(sql),
      insertEvent((sql.prepare << "INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
                                  "VALUES (:session, :execution, :configuration, :name, :at)",
                   soci::use(sessionId), soci::use(executionId, executionKnown),
                   soci::use(configurationId, configurationKnown), soci::use(eventName), soci::use(eventTime))),
      insertParameter((sql.prepare << "INSERT INTO parameters (event_id, position, name, kind, value_text, "
                                      "value_number) VALUES (:event, :position, :name, :kind, :text, :number)",
                       soci::use(eventId), soci::use(position), soci::use(name), soci::use(kind),
                       soci::use(text, hasText), soci::use(number, hasNumber))) {}

void SqliteEvents::Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
                          std::optional<long long> configuration) {
  sessionId = session;
  executionId = execution.value_or(0);
  executionKnown = execution ? soci::i_ok : soci::i_null;
  configurationId = configuration.value_or(0);
  configurationKnown = configuration ? soci::i_ok : soci::i_null;
  eventName = ToStoredText(event.Name);
  eventTime = ToStoredTime(event.TimeStamp);
  insertEvent.execute(true);
  sql.get_last_insert_id("", eventId);
  for (position = 1; position <= static_cast<int>(event.Parameters.size()); ++position) {
    Insert(ToStored(event, static_cast<std::size_t>(position)));
  }
}

void SqliteEvents::Insert(StoredParameter parameter) {
  name = std::move(parameter.name);
  kind = parameter.kind;
  hasText = parameter.text ? soci::i_ok : soci::i_null;
  text = std::move(parameter.text).value_or("");
  number = parameter.number.value_or(0);
  hasNumber = parameter.number ? soci::i_ok : soci::i_null;
  insertParameter.execute(true);
}

}  // namespace Quor::TolvaServices::Local

#include "EventStatements.h"

#include "Connection.h"
#include "StoredNumber.h"
#include "StoredText.h"
#include "StoredTime.h"

#include <TSAL/Error.h>

#include <variant>

namespace Quor::TolvaServices::Local {
namespace {

const char* KindOf(const Types::ns1__InstrumentParameterString& /*wire*/) { return "text"; }
const char* KindOf(const Types::ns1__InstrumentParameterInt& /*wire*/) { return "int"; }
const char* KindOf(const Types::ns1__InstrumentParameterDouble& /*wire*/) { return "double"; }
const char* KindOf(const Types::ns1__InstrumentParameterBoolean& /*wire*/) { return "bool"; }

}  // namespace

EventStatements::EventStatements(soci::session& sql)
    : sql(sql),
      insertEvent((sql.prepare << "INSERT INTO events (session_id, execution_id, configuration_id, name, at) "
                                  "VALUES (:session, :execution, :configuration, :name, :at)",
                   soci::use(sessionId), soci::use(executionId, executionKnown),
                   soci::use(configurationId, configurationKnown), soci::use(eventName), soci::use(eventTime))),
      insertParameter((sql.prepare << "INSERT INTO parameters (event_id, position, name, kind, value_text, "
                                      "value_number) VALUES (:event, :position, :name, :kind, :text, :number)",
                       soci::use(eventId), soci::use(position), soci::use(name), soci::use(kind),
                       soci::use(text, hasText), soci::use(number, hasNumber))) {}

void EventStatements::Insert(const Types::InstrumentEvent& event, long long session, std::optional<long long> execution,
                             std::optional<long long> configuration) {
  sessionId = session;
  executionId = execution.value_or(0);
  executionKnown = execution ? soci::i_ok : soci::i_null;
  configurationId = configuration.value_or(0);
  configurationKnown = configuration ? soci::i_ok : soci::i_null;
  eventName = ToStoredText(event.Name);
  eventTime = ToStoredTime(event.TimeStamp);
  insertEvent.execute(true);
  eventId = LastRow(sql);
  position = 0;
  for (const auto& parameter : event.Parameters) {
    if (!parameter) {
      throw TsError("event '" + event.Name + "' has no parameter at position " + std::to_string(position + 1) +
                    "; expected one behind every reference");
    }
    ++position;
    InsertParameter(*parameter);
  }
}

void EventStatements::InsertParameter(const Types::InstrumentParameterBase& parameter) {
  hasText = soci::i_null;
  hasNumber = soci::i_null;
  std::visit(
      [this](const auto& wire) {
        name = ToStoredText(wire.Name);
        kind = KindOf(wire);
        if constexpr (std::is_same_v<decltype(wire.Value), std::string>) {
          SetText(ToStoredText(wire.Value));
        } else {
          SetNumber(static_cast<double>(wire.Value));
        }
      },
      parameter.ToGsoap());
  insertParameter.execute(true);
}

void EventStatements::SetText(std::string value) {
  text = std::move(value);
  hasText = soci::i_ok;
}

void EventStatements::SetNumber(double value) {
  if (const std::string written = WrittenWhereNoColumnHolds(value); !written.empty()) {
    SetText(written);
  } else {
    number = value;
    hasNumber = soci::i_ok;
  }
}

}  // namespace Quor::TolvaServices::Local

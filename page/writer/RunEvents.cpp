#include "page/writer/RunEvents.h"

#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredTime.h"

namespace Velora::Page {

using namespace Store;

namespace {

enum EventColumn { Number, Execution, EventName, At, Configuration };
enum ParameterColumn { Position, Name, Kind, ValueText, ValueNumber };

}  // namespace

RunEvents::RunEvents(const Store::Reader& store, long long root)
    : rows(store, "v.event_id, v.execution_id, v.name, v.at, v.configuration_id",
           "executions x JOIN events v ON v.execution_id = x.execution_id", "x.root_id = ?1",
           "x.execution_id, v.event_id") {
  rows.Ask(root);
}

bool RunEvents::Next() {
  if (!rows.Next()) {
    return false;
  }
  const Rows& row = rows.Event();
  event.number = row.Integer(Number);
  event.execution = row.Integer(Execution);
  event.name = row.Text(EventName);
  event.at = Microseconds(row.Text(At));
  if (!row.IsNull(Configuration)) {
    configurations.insert(row.Integer(Configuration));
  }
  event.readings.clear();
  while (rows.NextParameter()) {
    AddReading(rows.Parameter());
  }
  return true;
}

void RunEvents::AddReading(const Rows& parameter) {
  Reading& reading = event.readings.emplace_back();
  reading.name = parameter.Text(Name);
  reading.kind = parameter.Text(Kind);
  ExpectShowable(parameter);
  if (!parameter.IsNull(ValueText)) {
    parameter.AppendValue(reading.json, ValueText);
    reading.number = NumberIn(parameter.Text(ValueText));
  } else if (!parameter.IsNull(ValueNumber)) {
    reading.isNumber = true;
    reading.number = parameter.Number(ValueNumber);
    AppendNumber(reading.json, *reading.number);
  } else {
    reading.json = "null";
  }
}

}  // namespace Velora::Page

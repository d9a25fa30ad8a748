#include "asking/NumbersInTime.h"
#include "output/Units.h"
#include "serving/NamedRun.h"
#include "serving/Route.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"

#include <cmath>
#include <limits>

namespace Velora::Ts {

using namespace Store;

namespace {

/// A parameter of the events of one name; texts are as stored.
struct EventParameter {
  std::string event, parameter;
  long long occurrence = 1;  ///< Of its name in an event.
};

struct RunNumbers {
  NumbersInTime numbers;
  long long others = 0;  ///< Values that cannot be drawn.
};

std::optional<double> DrawnNumber(const Rows& value) {
  enum { Number = 4 };
  const std::optional<double> number = value.IsNumber(Number) ? value.Number(Number) : NumberOf(value);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

RunNumbers NumbersOf(const Reader& store, const Run& run, const EventParameter& chosen) {
  enum Column { Event = 5, Execution, At };
  constexpr std::size_t longestNumber = 100;  // characters
  Rows rows(store, "SELECT p.position, '', p.kind, " + Beginning("p.value_text", longestNumber) +
                       ", p.value_number, v.event_id, v.execution_id, v.at FROM executions x "
                       "JOIN events v ON v.execution_id = x.execution_id JOIN parameters p ON p.event_id = v.event_id "
                       "WHERE x.root_id = ?1 AND v.name = ?2 AND p.name = ?3 "
                       "ORDER BY x.execution_id, v.event_id, p.position");
  RunNumbers found;
  const long long start = Microseconds(run.startedAt).value_or(0);
  long long event = 0, occurrence = 0;
  for (rows.Ask(run.root, chosen.event, chosen.parameter); rows.Next();) {
    occurrence = rows.Integer(Event) == event ? occurrence + 1 : 1;
    event = rows.Integer(Event);
    if (occurrence != chosen.occurrence) {
      continue;
    }
    const std::optional<double> number = DrawnNumber(rows);
    const std::optional<long long> at = Microseconds(rows.Text(At));
    if (number && at) {
      found.numbers.Add({*at - start, *number, event, rows.Integer(Execution)});
    } else {
      ++found.others;
    }
  }
  return found;
}

std::string PointsAsJson(const NumbersInTime& numbers) {
  std::string json = "[";
  for (const NumberInTime& point : numbers.Kept()) {
    json += (json.size() > 1 ? ",[" : "[") + std::to_string(point.at) + ',';
    AppendNumber(json, point.number);
    json += ',' + std::to_string(point.execution) + ']';
  }
  return json + ']';
}

/// A name, which a question can have in its stored form, as answers do.
std::string StoredName(const std::string& name) { return ToStoredText(FromStoredText(name)); }

Http::Answer AnswerRunNumbers(const Served& served, Http::Question& question) {
  const EventParameter chosen{StoredName(question.Text("event")), StoredName(question.RequiredText("parameter")),
                              question.Whole("parameter_n", 1, std::numeric_limits<int>::max()).value_or(1)};
  const NamedRun named = RunNamed(served, question);
  const RunNumbers found = NumbersOf(*named.store, named.run, chosen);
  named.store->ExpectUntouched();
  Http::Answer answer;
  answer.body = "{\"store\":" + std::to_string(named.place->number) + ",\"run\":";
  AppendText(answer.body, named.run.guid);
  answer.body += ",\"started_at\":";
  AppendText(answer.body, named.run.startedAt);
  answer.body += ",\"unit\":";
  AppendText(answer.body, Units(named.place->settings.units).Of(Readable(chosen.parameter)));
  answer.body += ",\"numbers\":" + std::to_string(found.numbers.Count()) +
                 ",\"others\":" + std::to_string(found.others) + ",\"points\":" + PointsAsJson(found.numbers) + "}\n";
  return answer;
}

}  // namespace

extern const Route routeRunNumbers = {"/api/run/numbers", &AnswerRunNumbers, Http::Weight::Heavy};

}  // namespace Velora::Ts

#include "serving/ShortenedStops.h"

#include "output/Shorten.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/values/Json.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t longest = 500;  // characters of a text
constexpr std::size_t mostStops = 10;
constexpr std::ptrdiff_t mostSteps = 50;   // of a path: the innermost
constexpr long long mostParameters = 100;  // of an event

enum EventColumn { At = 1, Name, Execution, Node };
enum ParameterColumn { ParameterName = 1, Kind, ValueText };

// One character more shows that a text is cut.
std::string Start(const std::string& column) { return Beginning(column, longest + 1); }

}  // namespace

ShortenedStops::ShortenedStops(const Reader& store)
    : store(store),
      event(store, "SELECT v.event_id, " + Start("v.at") + ", " + Start("v.name") + ", " + Start("x.guid") + ", " +
                       Start("x.node") +
                       " FROM events v JOIN executions x ON x.execution_id = v.execution_id WHERE v.event_id = ?1"),
      parameters(store, "SELECT p.position, " + Start("p.name") + ", " + Start("p.kind") + ", " +
                            Start("p.value_text") +
                            ", p.value_number FROM parameters p WHERE p.event_id = ?1 ORDER BY p.position LIMIT " +
                            std::to_string(mostParameters + 1)) {}

std::string ShortenedStops::AsJson(const Run& run) {
  std::size_t all = 0;
  const std::vector<Stop> stops = StopsOf(store, run, mostStops, all);
  if (stops.empty()) {
    return "null";
  }
  std::string json = "{\"in\":[";
  for (const Stop& stop : stops) {
    json += (json.ends_with('[') ? "" : ",\n") + StopAsJson(stop);
  }
  return json + "],\"more\":" + std::to_string(all - stops.size()) + ",\"log\":null}";
}

std::string ShortenedStops::StopAsJson(const Stop& stop) {
  std::string json = "{\"path\":[";
  const auto steps = std::min<std::ptrdiff_t>(std::ssize(stop.path), mostSteps);
  cut = cut || steps < std::ssize(stop.path);
  for (auto step = stop.path.end() - steps; step != stop.path.end(); ++step) {
    json += json.ends_with('[') ? "" : ",\n";
    const char* name = "{\"guid\":";
    for (const auto& [text, next] : {std::pair(&step->guid, ",\"node\":"), std::pair(&step->node, ",\"activity\":"),
                                     std::pair(&step->activity, ",\"version\":"), std::pair(&step->version, "}")}) {
      json += name;
      Append(json, *text);
      name = next;
    }
    json += name;
  }
  json += "],\"started_at\":";
  Append(json, stop.startedAt);
  json += ",\"events\":[";
  for (const long long number : stop.events) {
    json += (json.ends_with('[') ? "" : ",\n") + EventAsJson(number);
  }
  return json + "]}";
}

std::string ShortenedStops::EventAsJson(long long number) {
  if (!event.Ask(number).Next()) {
    return "null";
  }
  std::string json = "{\"number\":" + std::to_string(number);
  for (const auto& [name, column] :
       {std::pair("at", At), std::pair("name", Name), std::pair("execution", Execution), std::pair("node", Node)}) {
    json += std::string(",\"") + name + "\":";
    Append(json, std::string(event.Text(column)));
  }
  json += ",\"parameters\":[";
  AppendParameters(json, number);
  return json + "]}";
}

void ShortenedStops::AppendParameters(std::string& json, long long number) {
  parameters.Ask(number);
  for (long long count = 0; parameters.Next(); ++count) {
    if (count == mostParameters) {
      cut = true;
      return;
    }
    json += count > 0 ? ",{\"name\":" : "{\"name\":";
    Append(json, std::string(parameters.Text(ParameterName)));
    json += ",\"kind\":";
    Append(json, std::string(parameters.Text(Kind)));
    json += ",\"value\":";
    if (IsText(parameters)) {
      Append(json, std::string(parameters.Text(ValueText)));
    } else {
      AppendParameterValue(json, parameters);
    }
    json += '}';
  }
}

void ShortenedStops::Append(std::string& json, std::string text) {
  cut = Shorten(text, longest) || cut;
  AppendText(json, text);
}

}  // namespace Velora::Ts

#include "output/EventLines.h"

#include "output/Output.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/EventRows.h"
#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <algorithm>

namespace Velora::Ts {

using namespace Store;

namespace {

enum Column { Number, At, Name, Guid, Node };

constexpr const char* columns = "v.event_id, v.at, v.name, x.guid, x.node";
constexpr std::size_t widestAligned = 24;

// Pads a text to the widest one so far, so that most lines are aligned although later lines are not known yet.
std::string Aligned(const std::string& text, std::size_t& width) {
  const std::size_t own = WidthOf(text);
  width = std::max(width, std::min(own, widestAligned));
  return text + std::string(width - std::min(own, width) + 2, ' ');
}

}  // namespace

EventRows EventsOfRun(const Store::Reader& store, long long root) {
  EventRows events(store, columns, "executions x JOIN events v ON v.execution_id = x.execution_id", "x.root_id = ?1");
  events.Ask(root);
  return events;
}

EventRows EventsOfRunSince(const Store::Reader& store, long long root, long long number) {
  EventRows events(store, columns, "events v JOIN executions x ON x.execution_id = v.execution_id",
                   "v.event_id > ?2 AND x.root_id + 0 = ?1");
  events.Ask(root, number);
  return events;
}

void EventLines::Write(EventRows& events) {
  const Rows& event = events.Event();
  std::string line = LocalTime(event.Text(At), true) + "  ";
  line += Aligned(Shown(event.Text(Node)), nodeWidth);
  line += Aligned(Shown(event.Text(Name)), nameWidth);
  while (events.NextParameter()) {
    line += ParameterInWords(events.Parameter()) + "  ";
  }
  WriteOut(Cut(line.erase(line.find_last_not_of(' ') + 1), terminal.width) + '\n');
}

std::string EventAsJson(EventRows& events) {
  std::string json = "{\"number\":" + std::to_string(events.Event().Integer(Number));
  const auto add = [&](const char* name, int column) {
    json += std::string(",\"") + name + "\":";
    events.Event().AppendValue(json, column);
  };
  add("at", At);
  add("name", Name);
  add("execution", Guid);
  add("node", Node);
  json += ",\"parameters\":[";
  for (const char* separator = "{\"name\":"; events.NextParameter(); separator = ",{\"name\":") {
    ExpectShowable(events.Parameter());
    json += separator;
    events.Parameter().AppendValue(json, 1);
    json += ",\"kind\":";
    events.Parameter().AppendValue(json, 2);
    json += ",\"value\":";
    AppendParameterValue(json, events.Parameter());
    json += '}';
  }
  return json + "]}";
}

}  // namespace Velora::Ts

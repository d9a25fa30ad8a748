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

enum Column { Number, At, Name, Guid, Node, Key };

constexpr const char* columns = "v.event_id, v.at, v.name, x.guid, x.node, x.execution_id";
constexpr std::size_t widestAligned = 24;
constexpr std::size_t mostNodes = 20;  // of a path

/// The nodes down to an execution, because the name of a node can repeat below each parent.
std::string InWords(const ExecutionPath& path, EventLines::Paths begin) {
  const std::size_t root = begin == EventLines::Paths::BelowRun && path.size() > 1 ? 1 : 0;
  const std::size_t first = std::max(root, path.size() - std::min(path.size(), mostNodes));
  return (first > root ? "\u2026 > " : "") +
         Printable(NodesInWords({path.begin() + static_cast<std::ptrdiff_t>(first), path.end()}));
}

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

void EventLines::Write(EventRows& events, ExecutionPaths& paths) {
  const Rows& event = events.Event();
  std::string time = LocalTime(event.Text(At), true);
  if (const std::optional<TimeParts> parts = PartsOf(time); parts && terminal.IsNarrow()) {
    const std::string day = days.Above(*parts);
    WriteOut(day.empty() ? "" : Cut(day, terminal.width) + '\n');
    time = parts->ofDay;
  }
  const std::string begin = time + "  " + Aligned(InWords(paths.Of(event.Integer(Key)), begins), nodeWidth);
  std::string line = Aligned(Shown(event.Text(Name)), nameWidth);
  while (events.NextParameter()) {
    line += ParameterInWords(events.Parameter(), digits) + "  ";
  }
  line = begin + Cut(line, terminal.width - std::min(terminal.width, WidthOf(begin)));
  WriteOut(line.erase(line.find_last_not_of(' ') + 1) + '\n');
}

std::string EventAsJson(EventRows& events, const std::string& more) {
  std::string json = "{\"number\":" + std::to_string(events.Event().Integer(Number));
  const auto add = [&](const char* name, int column) {
    json += std::string(",\"") + name + "\":";
    events.Event().AppendValue(json, column);
  };
  add("at", At);
  add("name", Name);
  add("execution", Guid);
  add("node", Node);
  json += more + ",\"parameters\":[";
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

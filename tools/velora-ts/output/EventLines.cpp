#include "output/EventLines.h"

#include "output/Output.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/reading/EventRows.h"
#include "store/reading/ParameterValue.h"
#include "store/reading/Reader.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "store/values/StoredTime.h"

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

KeyRange LaterEvents(const Store::Reader& store, long long root) {
  const std::vector<KeyRange> ranges = KeysOf(StoreOf(root));
  KeyRange later = store.Where().kind == Store::Database::Kind::PostgreSql ? ranges.back() : ranges.front();
  Rows newest(store, "SELECT MAX(event_id) FROM events WHERE event_id > ?1 AND event_id <= ?2");
  if (newest.Ask(later.after, later.upTo).Next() && !newest.IsNull(0)) {
    later.after = newest.Integer(0);
  }
  return later;
}

EventRows EventsOfRunSince(const Store::Reader& store, long long root, const KeyRange& keys) {
  EventRows events(store, columns, "events v JOIN executions x ON x.execution_id = v.execution_id",
                   "v.event_id > ?2 AND v.event_id <= ?3 AND x.root_id + 0 = ?1");
  events.Ask(root, keys.after, keys.upTo);
  return events;
}

EventRows EventNumbered(const Store::Reader& store) {
  return {store, columns, "events v JOIN executions x ON x.execution_id = v.execution_id", "v.event_id = ?1"};
}

long long TimeOf(const EventRows& events) {
  return Microseconds(events.Event().Text(At)).value_or(std::numeric_limits<long long>::min());
}

void EventLines::Write(EventRows& events, ExecutionPaths& paths) {
  const Rows& event = events.Event();
  std::string values;
  while (events.NextParameter()) {
    values += ParameterInWords(events.Parameter(), digits) + "  ";
  }
  Write(event.Text(At), InWords(paths.Of(event.Integer(Key)), begins), Shown(event.Text(Name)), values);
}

void EventLines::Write(const LogFile::Line& line) {
  Write(StoredTimeOf(line), line.source.empty() ? "log" : "log of " + Printable(line.source),
        LogFile::InWords(line.level), Printable(line.text));
}

void EventLines::Write(std::string_view at, const std::string& where, const std::string& name,
                       const std::string& more) {
  std::string time = LocalTime(at, true);
  if (const std::optional<TimeParts> parts = PartsOf(time); parts && terminal.IsNarrow()) {
    const std::string day = days.Above(*parts);
    WriteOut(day.empty() ? "" : Cut(day, terminal.width) + '\n');
    time = parts->ofDay;
  }
  const std::string begin = time + "  " + Aligned(where, nodeWidth);
  const std::string rest = Aligned(name, nameWidth) + more;
  std::string line = begin + Cut(rest, terminal.width - std::min(terminal.width, WidthOf(begin)));
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

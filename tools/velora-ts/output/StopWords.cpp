#include "output/StopWords.h"

#include "output/EventLines.h"
#include "output/LogLines.h"
#include "output/Output.h"
#include "output/Terminal.h"
#include "output/Times.h"
#include "output/Words.h"
#include "output/Wrapped.h"
#include "store/reading/EventRows.h"
#include "store/reading/Runs.h"
#include "store/values/Json.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t mostStops = 10;

/// A time without date and offset, if they are those of another time.
std::string TimeBeside(const std::string& stored, const std::string& other) {
  const std::string time = LocalTime(stored, true);
  const std::optional<TimeParts> parts = PartsOf(time);
  const std::optional<TimeParts> beside = PartsOf(LocalTime(other, true));
  return parts && beside && parts->date == beside->date && parts->offset == beside->offset ? parts->ofDay : time;
}

std::string PathInWords(const ExecutionPath& path) {
  const std::string above = NodesInWords({path.begin(), path.end() - 1});
  return "in " + Shown(path.back().node) + (above.empty() ? "" : ", below " + Printable(above));
}

enum Column { Number, At, Name, Node, Execution };

EventRows ReadableEvents(const Reader& store) {
  return {store, "v.event_id, v.at, v.name, x.node, x.execution_id",
          "events v JOIN executions x ON x.execution_id = v.execution_id", "v.event_id = ?1"};
}

/// An event with all its parameters, and where it was unless that is the execution itself.
std::string EventInWords(EventRows& events, long long execution, const std::string& lastRecorded, int digits) {
  const Rows& event = events.Event();
  std::string words = TimeBeside(std::string(event.Text(At)), lastRecorded) + "  " + Shown(event.Text(Name));
  words += event.Integer(Execution) == execution ? "" : " in " + Shown(event.Text(Node));
  while (events.NextParameter()) {
    words += "  " + ParameterInWords(events.Parameter(), digits);
  }
  return words;
}

std::string LogLineInWords(const LogFile::Line& line, const std::string& lastRecorded) {
  return TimeBeside(StoredTimeOf(line), lastRecorded) + "  " + LogFile::InWords(line.level) + "  " +
         (line.source.empty() ? "" : Printable(line.source) + ": ") + Printable(line.text);
}

template <typename List, typename AsJson>
std::string ListAsJson(const List& list, const AsJson& asJson) {
  std::string json = "[";
  for (const auto& item : list) {
    json += (json.size() > 1 ? ",\n" : "") + asJson(item);
  }
  return json + ']';
}

std::string StepAsJson(const PathStep& step) {
  std::string json = "{\"guid\":";
  AppendText(json, step.guid);
  json += ",\"node\":";
  AppendText(json, step.node);
  json += ",\"activity\":";
  AppendText(json, step.activity);
  json += ",\"version\":";
  AppendText(json, step.version);
  return json + '}';
}

}  // namespace

StopWords::StopWords(const Reader& store, const Run& run, const std::deque<LogFile::Line>* log, int digits)
    : store(store), log(log), digits(digits), stops(StopsOf(store, run, mostStops, all)) {}

void StopWords::Write(const std::string& lastRecorded) const {
  const Terminal terminal;
  const auto write = [&](const std::string& words, std::size_t indent) {
    WriteOut(Wrapped(words, terminal.width, indent));
  };
  EventRows event = ReadableEvents(store);
  for (const Stop& stop : stops) {
    write(PathInWords(stop.path) + ", since " + TimeBeside(stop.startedAt, lastRecorded), 0);
    for (const long long number : stop.events) {
      if (event.Ask(number).Next()) {
        write(EventInWords(event, stop.path.back().key, lastRecorded, digits), 2);
      }
    }
  }
  if (all > stops.size()) {
    write("and in " + std::to_string(all - stops.size()) + " more", 0);
  }
  if (!stops.empty() && log != nullptr) {
    write(log->empty() ? "the log has neither warnings nor errors around that time" : "the log around that time", 0);
    for (const LogFile::Line& line : *log) {
      write(LogLineInWords(line, lastRecorded), 2);
    }
  }
}

std::string StopWords::AsJson() const {
  if (stops.empty()) {
    return "null";
  }
  EventRows event = EventNumbered(store);
  const auto eventAsJson = [&](long long number) { return event.Ask(number).Next() ? EventAsJson(event) : "null"; };
  const auto stopAsJson = [&](const Stop& stop) {
    std::string json = "{\"path\":" + ListAsJson(stop.path, StepAsJson) + ",\"started_at\":";
    AppendText(json, stop.startedAt);
    return json + ",\"events\":" + ListAsJson(stop.events, eventAsJson) + '}';
  };
  return "{\"in\":" + ListAsJson(stops, stopAsJson) + ",\"more\":" + std::to_string(all - stops.size()) +
         ",\"log\":" + (log == nullptr ? "null" : ListAsJson(*log, LogLineAsJson)) + '}';
}

}  // namespace Velora::Ts

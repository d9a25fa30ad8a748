#include "EventLines.h"

#include "Json.h"
#include "Output.h"
#include "Rows.h"
#include "Store.h"
#include "Times.h"
#include "Values.h"

#include <algorithm>

namespace {

enum Column { Number, At, Name, Guid, Node };

constexpr std::size_t widestAligned = 24;

// As wide as the widest so far, so that most lines stand below each other although none is known before.
std::string Aligned(const std::string& text, std::size_t& width) {
  const std::size_t own = WidthOf(text);
  width = std::max(width, std::min(own, widestAligned));
  return text + std::string(width - std::min(own, width) + 2, ' ');
}

}  // namespace

void EventLines::Write(const Store& store, const Rows& events) {
  std::string line = LocalTime(events.Text(At), true) + "  ";
  line += Aligned(Printable(events.Text(Node)), nodeWidth);
  line += Aligned(Printable(events.Text(Name)), nameWidth);
  Rows parameters(store, parametersOfEvent);
  for (parameters.Ask(events.Integer(Number)); parameters.Next();) {
    line += ParameterInWords(parameters) + "  ";
  }
  WriteOut(Cut(line.erase(line.find_last_not_of(' ') + 1), terminal.width) + '\n');
}

std::string EventAsJson(const Store& store, const Rows& events) {
  std::string json = "{\"number\":" + std::to_string(events.Integer(Number));
  const auto add = [&](const char* name, int column) {
    json += std::string(",\"") + name + "\":";
    events.AppendValue(json, column);
  };
  add("at", At);
  add("name", Name);
  add("execution", Guid);
  add("node", Node);
  json += ",\"parameters\":[";
  Rows parameters(store, parametersOfEvent);
  const char* separator = "{\"name\":";
  for (parameters.Ask(events.Integer(Number)); parameters.Next(); separator = ",{\"name\":") {
    json += separator;
    parameters.AppendValue(json, 1);
    json += ",\"kind\":";
    parameters.AppendValue(json, 2);
    json += ",\"value\":";
    AppendParameterValue(json, parameters);
    json += '}';
  }
  return json + "]}";
}

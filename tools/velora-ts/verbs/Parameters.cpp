#include "output/Output.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Units.h"
#include "output/Words.h"
#include "store/reading/ParameterValue.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"
#include "verbs/AbsentNames.h"
#include "verbs/DigitsOption.h"
#include "verbs/RunForms.h"
#include "verbs/StoreVerb.h"
#include "verbs/WindowOptions.h"

#include <cmath>
#include <map>
#include <set>

namespace Velora::Ts {

using namespace Store;

namespace {

/// What the values of a name are like. Its texts are as stored.
struct Use {
  std::set<std::string> events, kinds;
  long long count = 0;
  std::optional<double> lowest, highest;
  std::string firstAt, lastAt;

  void Add(const Rows& rows, std::string_view at) {
    ++count;
    if (firstAt.empty() || at < firstAt) {
      firstAt = at;
    }
    if (at > lastAt) {
      lastAt = at;
    }
    if (const std::optional<double> number = NumberOf(rows); number && !std::isnan(*number)) {
      lowest = std::min(lowest.value_or(*number), *number);
      highest = std::max(highest.value_or(*number), *number);
    }
  }
  /// Adds the values of the same name in events of another name, or of another kind.
  void Add(const Use& other) {
    count += other.count;
    firstAt = firstAt.empty() ? other.firstAt : std::min(firstAt, other.firstAt);
    lastAt = std::max(lastAt, other.lastAt);
    if (other.lowest) {
      lowest = std::min(lowest.value_or(*other.lowest), *other.lowest);
      highest = std::max(highest.value_or(*other.highest), *other.highest);
    }
  }
};

using Uses = std::map<std::string, Use>;

/// Reads the uses of all names in a window. Memory grows with the names only.
Uses UsesIn(const Store::Reader& store, const Store::EventWindow& window) {
  enum { Name = 1, Kind, At = 5, Event };
  const WindowQuestion question(store, window);
  Rows rows = question.Parameters("p.position, p.name, p.kind, p.value_text, p.value_number, v.at, v.name");
  // By name, event and kind, so that no set is searched for each value. A stored text has no zero byte.
  struct Part {
    std::string name, event, kind;
    Use use = {};
  };
  std::map<std::string, Part> parts;
  std::string key;
  for (rows.Ask(question.Values()); rows.Next();) {
    key = rows.Text(Name);
    key.append(1, '\0').append(rows.Text(Event)).append(1, '\0').append(rows.Text(Kind));
    auto part = parts.find(key);
    if (part == parts.end()) {
      const auto text = [&rows](int column) { return std::string(rows.Text(column)); };
      part = parts.emplace(key, Part{text(Name), text(Event), text(Kind)}).first;
    }
    part->second.use.Add(rows, rows.Text(At));
  }
  Uses uses;
  for (const auto& [together, part] : parts) {
    Use& use = uses[part.name];
    use.events.insert(part.event);
    use.kinds.insert(part.kind);
    use.Add(part.use);
  }
  return uses;
}

std::string Listed(const std::set<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + Shown(name);
  }
  return list;
}

void WriteTable(const Uses& uses, const Units& units, int digits) {
  TextTable table({{.title = "parameter", .whole = true},
                   {.title = "count", .number = true},
                   {.title = "kind"},
                   {.title = "min", .number = true},
                   {.title = "max", .number = true},
                   {.title = "first", .yielding = true, .times = TextTable::Times::Dated},
                   {.title = "last", .times = TextTable::Times::Dated},
                   {.title = "events", .yielding = true}});
  for (const auto& [name, use] : uses) {
    table.Add({{units.Head(Readable(name))},
               {std::to_string(use.count)},
               {Listed(use.kinds)},
               {use.lowest ? NumberInWords(*use.lowest, digits) : ""},
               {use.highest ? NumberInWords(*use.highest, digits) : ""},
               {LocalTime(use.firstAt, false)},
               {LocalTime(use.lastAt, false)},
               {Listed(use.events)}});
  }
  table.Finish();
}

void AppendNames(std::string& json, const std::set<std::string>& names) {
  const char* separator = "[";
  for (const std::string& name : names) {
    json += separator;
    AppendText(json, name);
    separator = ",";
  }
  json += ']';
}

void WriteJson(const Uses& uses) {
  const char* separator = "[\n";
  for (const auto& [name, use] : uses) {
    std::string json = separator;
    separator = ",\n";
    json += "{\"name\":";
    AppendText(json, name);
    json += ",\"events\":";
    AppendNames(json, use.events);
    json += ",\"kinds\":";
    AppendNames(json, use.kinds);
    json += ",\"count\":" + std::to_string(use.count);
    for (const auto& [title, number] : {std::pair(",\"min\":", use.lowest), std::pair(",\"max\":", use.highest)}) {
      json += title;
      number ? AppendNumber(json, *number) : void(json += "null");
    }
    json += ",\"first_at\":";
    AppendText(json, use.firstAt);
    json += ",\"last_at\":";
    AppendText(json, use.lastAt);
    WriteData(json + '}');
  }
  WriteData(*separator == '[' ? "[]\n" : "\n]\n");
}

class ParametersVerb : public StoreVerb {
 public:
  explicit ParametersVerb(Options& options) : StoreVerb(options), window(options), digits(options) {
    options.AddText("RUN", run, "Only events of this run: " VELORA_RUN_FORMS);
    options.AddFlag("--json", json, "Write a JSON array, with times in UTC");
  }

  ExitCode Execute() override {
    Store::EventWindow asked = window.Window();
    const int shown = digits.Value();
    const Settings settings = StoreSettings();
    const Reader store(settings.database);
    if (!run.empty()) {
      const std::optional<Run> named = TheRunNamed(store, run);
      if (!named) {
        return Found;
      }
      asked.run = named->root;
    }
    const Uses uses = UsesIn(store, asked);
    if (uses.empty() && !asked.name.empty() && ExplainAbsence(store, Named::Event, asked.name) == Found) {
      return Found;
    }
    if (json) {
      WriteJson(uses);
    } else {
      WriteTable(uses, Units(settings.units), shown);
    }
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

 private:
  WindowOptions window;
  DigitsOption digits;
  std::string run;
  bool json = false;
};

}  // namespace

extern const Registration registeredParameters = {
    "parameters",
    "Lists the names of parameters: how often and in which events they were recorded, and from where to where.",
    "parameters last\nparameters --since 2026-11", &Make<ParametersVerb>};

}  // namespace Velora::Ts

#include "comparing/Differences.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/Words.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <array>
#include <cmath>
#include <vector>

namespace Velora::Ts {

using namespace Store;

namespace {

using Kind = Compared::Kind;

const char* NameOf(Kind kind) {
  static constexpr std::array names = {"execution", "order", "status",      "version",
                                       "duration",  "event", "event order", "parameter"};
  return names.at(static_cast<std::size_t>(kind));
}

/// Builds an object.
class Object {
 public:
  Object& Text(const char* name, const std::string& text) {
    Begin(name);
    AppendText(json, text);
    return *this;
  }
  Object& Raw(const char* name, const std::string& value) {
    Begin(name);
    json += value;
    return *this;
  }
  Object& Count(const char* name, std::size_t count) { return Raw(name, std::to_string(count)); }
  std::string End() const { return json.empty() ? "{}" : json + '}'; }

 private:
  void Begin(const char* name) { json += (json.empty() ? "{\"" : ",\"") + std::string(name) + "\":"; }

  std::string json;
};

std::string PathAsJson(const RunTree& tree, std::size_t place) {
  std::vector<std::size_t> way{place};
  for (; way.back() != tree.Root(); way.push_back(tree.At(way.back()).parent)) {
  }
  std::string json;
  for (auto at = way.rbegin(); at != way.rend(); ++at) {
    const TreeNode& node = tree.At(*at);
    json += json.empty() ? '[' : ',';
    json += Object().Text("activity", tree.ActivityOf(*at).name).Text("node", node.node).Count("n", node.ordinal).End();
  }
  return json + ']';
}

std::string NumberAsJson(double number) {
  std::string json;
  std::isnan(number) ? static_cast<void>(json = "null") : AppendNumber(json, number);
  return json;
}

std::string ValueAsJson(const std::optional<Value>& value) { return value ? value->json : "null"; }

std::string AsJson(const Comparison& comparison, const Compared& compared) {
  const bool isFirst = compared.first != Matching::none, isSecond = compared.second != Matching::none;
  Object object;
  object.Text("kind", NameOf(compared.kind));
  if (!isFirst || !isSecond) {
    object.Text("only_in", isFirst ? "run" : "against");
  }
  if (isFirst) {
    object.Raw("path", PathAsJson(comparison.First(), compared.first));
  }
  if (isSecond) {
    object.Raw("against_path", PathAsJson(comparison.Second(), compared.second));
  }
  if (compared.kind == Kind::Execution) {
    object.Count("below", isFirst ? comparison.First().CountBelow(compared.first)
                                  : comparison.Second().CountBelow(compared.second));
  }
  if (compared.firstEvent || compared.secondEvent) {
    object.Text("event", compared.event);
  }
  if (compared.firstEvent) {
    object.Count("n", compared.firstOccurrence).Raw("number", std::to_string(*compared.firstEvent));
  }
  if (compared.secondEvent) {
    object.Count("against_n", compared.secondOccurrence).Raw("against_number", std::to_string(*compared.secondEvent));
  }
  if (compared.kind == Kind::Parameter) {
    object.Text("parameter", compared.parameter).Count("parameter_n", compared.occurrence);
  }
  if (compared.firstValue || compared.secondValue) {
    object.Raw("value", ValueAsJson(compared.firstValue)).Raw("against", ValueAsJson(compared.secondValue));
  }
  if (compared.by) {
    object.Raw(compared.kind == Kind::Duration ? "factor" : "difference", NumberAsJson(*compared.by));
  }
  if (compared.at) {
    object.Text("at", ToStoredTime(Time(std::chrono::microseconds(*compared.at))));
  }
  return object.End();
}

std::string AsJson(const Summary::Key& key, const Summary::Group& group) {
  Object object;
  object.Text("kind", NameOf(key.kind));
  if (key.isFirstAlone || key.isSecondAlone) {
    object.Text("only_in", key.isFirstAlone ? "run" : "against");
  }
  if (key.kind == Kind::Version) {
    object.Text("value", key.name).Text("against", key.parameter);
  } else if (!key.name.empty()) {
    object.Text("event", key.name);
  }
  if (key.kind == Kind::Parameter) {
    object.Text("parameter", key.parameter).Count("parameter_n", key.occurrence);
  }
  object.Raw("compared", std::to_string(group.compared)).Raw("differ", std::to_string(group.differ));
  if (group.differ > 1) {
    object.Raw("constant", group.constant ? "true" : "false");
  }
  return object.End();
}

std::string AsJson(const ChangedLine& line) {
  return Object()
      .Text("only_in", line.first ? "run" : "against")
      .Count("line", line.first ? *line.first : *line.second)
      .Text("text", line.text)
      .End();
}

/// Writes a list, item by item.
class List {
 public:
  List(const char* name, const Sink& write) : write(write) { write(std::string(",\"") + name + "\":["); }
  void Add(const std::string& item) {
    write(separator + item);
    separator = ",\n";
  }
  void End() { write("]"); }

 private:
  const Sink& write;
  const char* separator = "\n";
};

}  // namespace

void WriteDifferencesAsJson(const Differences& found, Summary& summary, bool all, const Sink& write,
                            const std::string& more) {
  write('{' + more + "\"run\":{" + JsonMembers(found.first) + ',' + JsonState(found.firstState) + "},\"against\":{" +
        JsonMembers(found.second) + ',' + JsonState(found.secondState) + '}');
  List differences("differences", write);
  found.comparison.Visit([&](const Compared& compared) {
    summary.Add(compared);
    if (compared.differs) {
      differences.Add(AsJson(found.comparison, compared));
    }
  });
  differences.End();
  List configuration("configuration", write);
  found.ForEachChangedLine([&](const ChangedLine& line) { configuration.Add(AsJson(line)); });
  configuration.End();
  List groups("summary", write);
  for (const auto& [key, group] : summary.Groups()) {
    if (all || group.differ > 0) {
      groups.Add(AsJson(key, group));
    }
  }
  groups.End();
  const Compared* const parting = summary.Parting();
  write(",\"parting\":" + (parting != nullptr ? AsJson(found.comparison, *parting) : "null") +
        ",\"same\":" + (found.AreNone(summary) ? "true" : "false") + "}\n");
}

}  // namespace Velora::Ts

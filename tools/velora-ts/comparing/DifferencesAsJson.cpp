#include "comparing/Differences.h"
#include "output/Output.h"
#include "output/Shorten.h"
#include "output/StateWords.h"
#include "output/Words.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <array>
#include <cmath>
#include <set>
#include <string>
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

/// Cuts what is longer than the limit, and counts what was cut.
struct Cutter {
  /// @return whether the text was longer.
  bool Cut(std::string& text) {
    const bool isCut = limit.longest > 0 && Shorten(text, limit.longest);
    texts += isCut ? 1 : 0;
    return isCut;
  }
  /// Leaves out what is above the innermost steps.
  void Cut(std::vector<std::size_t>& wayUp) {
    if (limit.first > 0 && wayUp.size() > limit.deepest) {
      steps += wayUp.size() - limit.deepest;
      wayUp.resize(limit.deepest);
    }
  }

  const DifferencesLimit& limit;
  std::size_t texts = 0, steps = 0;
};

/// Builds an object.
class Object {
 public:
  explicit Object(Cutter& cutter) : cutter(cutter) {}

  Object& Text(const char* name, std::string text) {
    Begin(name);
    cutter.Cut(text);
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

  Cutter& cutter;
  std::string json;
};

std::string PathAsJson(const RunTree& tree, std::size_t place, Cutter& cutter) {
  std::vector<std::size_t> way{place};
  for (; way.back() != tree.Root(); way.push_back(tree.At(way.back()).parent)) {
  }
  cutter.Cut(way);
  std::string json;
  for (auto at = way.rbegin(); at != way.rend(); ++at) {
    const TreeNode& node = tree.At(*at);
    json += json.empty() ? '[' : ',';
    json += Object(cutter)
                .Text("activity", tree.ActivityOf(*at).name)
                .Text("node", node.node)
                .Count("n", node.ordinal)
                .End();
  }
  return json + ']';
}

std::string NumberAsJson(double number) {
  std::string json;
  std::isnan(number) ? static_cast<void>(json = "null") : AppendNumber(json, number);
  return json;
}

std::string ValueAsJson(const std::optional<Value>& value, Cutter& cutter) {
  if (!value || value->json.size() <= cutter.limit.longest) {
    return value ? value->json : "null";
  }
  std::string words = value->words;
  if (!cutter.Cut(words)) {
    return value->json;
  }
  std::string json;
  AppendText(json, words);
  return json;
}

std::string AsJson(const Comparison& comparison, const Compared& compared, Cutter& cutter) {
  const bool isFirst = compared.first != Matching::none, isSecond = compared.second != Matching::none;
  Object object(cutter);
  object.Text("kind", NameOf(compared.kind));
  if (!isFirst || !isSecond) {
    object.Text("only_in", isFirst ? "run" : "against");
  }
  if (isFirst) {
    object.Raw("path", PathAsJson(comparison.First(), compared.first, cutter))
        .Raw("execution", std::to_string(comparison.First().At(compared.first).key));
  }
  if (isSecond) {
    object.Raw("against_path", PathAsJson(comparison.Second(), compared.second, cutter))
        .Raw("against_execution", std::to_string(comparison.Second().At(compared.second).key));
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
    object.Raw("value", ValueAsJson(compared.firstValue, cutter))
        .Raw("against", ValueAsJson(compared.secondValue, cutter));
  }
  if (compared.by) {
    object.Raw(compared.kind == Kind::Duration ? "factor" : "difference", NumberAsJson(*compared.by));
  }
  if (compared.at) {
    object.Text("at", ToStoredTime(Time(std::chrono::microseconds(*compared.at))));
  }
  return object.End();
}

std::string AsJson(const Summary::Key& key, const Summary::Group& group, Cutter& cutter) {
  Object object(cutter);
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

std::string AsJson(const ChangedLine& line, Cutter& cutter) {
  return Object(cutter)
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

std::string RunAsJson(Execution run, const KnownState& state, Cutter& cutter) {
  for (std::string* const text :
       {&run.node, &run.description, &run.instrument, &run.host, &run.activity, &run.version}) {
    cutter.Cut(*text);
  }
  return '{' + JsonMembers(run) + ',' + JsonState(state) + '}';
}

/// Writes a comparison, as much of it as the limit allows.
class DifferencesWriter {
 public:
  DifferencesWriter(const Differences& found, Summary& summary, const Sink& write, const DifferencesLimit& limit)
      : found(found), summary(summary), write(write), limit(limit), cutter{limit} {}

  void Write(bool all, const std::string& more) {
    write('{' + more + "\"run\":" + RunAsJson(found.first, found.firstState, cutter) +
          ",\"against\":" + RunAsJson(found.second, found.secondState, cutter));
    WriteDifferences();
    WriteConfiguration();
    WriteGroups(all);
    const Compared* const parting = summary.Parting();
    write(",\"parting\":" + (parting != nullptr ? AsJson(found.comparison, *parting, cutter) : "null") +
          ",\"same\":" + (found.AreNone(summary) ? "true" : "false"));
    if (limit.longest > 0) {
      write(std::string(",\"cut\":") + (cutter.texts > 0 ? "true" : "false"));
    }
    if (limit.first > 0) {
      write(",\"left_out\":" + Object(cutter)
                                   .Count("differences", differences)
                                   .Count("configuration", lines)
                                   .Count("summary", groups)
                                   .Count("steps", cutter.steps)
                                   .Count("texts", cutter.texts)
                                   .End());
    }
    write("}\n");
  }

 private:
  void WriteDifferences() {
    List list("differences", write);
    found.comparison.Visit([&](const Compared& compared) {
      const Summary::Group& group = summary.Add(compared);
      if (!compared.differs) {
        return;
      }
      if (limit.first == 0 || (Tells(group) && static_cast<std::size_t>(group.differ) <= limit.first)) {
        list.Add(AsJson(found.comparison, compared, cutter));
      } else {
        ++differences;
      }
    });
    list.End();
  }

  /// Whether a group is one of the first that differ.
  bool Tells(const Summary::Group& group) {
    if (told.size() < limit.groups) {
      told.insert(&group);
    }
    return told.contains(&group);
  }

  void WriteConfiguration() {
    List list("configuration", write);
    std::size_t count = 0;
    found.ForEachChangedLine([&](const ChangedLine& line) {
      if (limit.first == 0 || ++count <= limit.lines) {
        list.Add(AsJson(line, cutter));
      } else {
        ++lines;
      }
    });
    list.End();
  }

  void WriteGroups(bool all) {
    List list("summary", write);
    for (const auto& [key, group] : summary.Groups()) {
      if (!all && group.differ == 0) {
        continue;
      }
      if (limit.first == 0 || told.contains(&group)) {
        list.Add(AsJson(key, group, cutter));
      } else {
        ++groups;
      }
    }
    list.End();
  }

  const Differences& found;
  Summary& summary;
  const Sink& write;
  const DifferencesLimit& limit;
  Cutter cutter;
  std::set<const Summary::Group*> told;
  std::size_t differences = 0, lines = 0, groups = 0;  // that were left out
};

}  // namespace

void WriteDifferencesAsJson(const Differences& found, Summary& summary, bool all, const Sink& write,
                            const std::string& more, const DifferencesLimit& limit) {
  DifferencesWriter(found, summary, write, limit).Write(all, more);
}

}  // namespace Velora::Ts

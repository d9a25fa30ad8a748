#include "comparing/Differences.h"
#include "output/Output.h"
#include "output/StateWords.h"
#include "output/Terminal.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Words.h"
#include "store/values/StoredTime.h"

namespace Velora::Ts {

using namespace Store;

namespace {

using Kind = Compared::Kind;
using Group = Summary::Group;

constexpr const char* nothing = "-";  // of a value that is not there

class Writer {
 public:
  Writer(const Differences& found, const Summary& summary, const InWordsOptions& options)
      : found(found),
        comparison(found.comparison),
        summary(summary),
        options(options),
        one(Printable(found.first.guid.substr(0, shortGuid))),
        other(Printable(found.second.guid.substr(0, shortGuid))) {
    if (one == other) {  // of a copy of the store
      one = "RUN";
      other = "RUN2";
    }
  }

  void Write() {
    WriteHead();
    WriteParting();
    WriteAlone();
    WriteTables();
    WriteVersions();
    WriteConfiguration();
    WriteDurations();
    if (options.all) {
      WriteEach();
    }
  }

 private:
  void Line(const std::string& text) const { WriteOut(Cut(text, terminal.width) + '\n'); }
  void Title(const std::string& text) const { Line("\n" + text); }

  void WriteHead() const {
    TextTable table({{.title = "run", .whole = true},
                     {.title = "started", .times = TextTable::Times::Dated},
                     {.title = "duration", .number = true},
                     {.title = "state", .whole = true},
                     {.title = "activity", .yielding = true},
                     {.title = "node", .whole = true}});
    for (const auto& [name, root, state] :
         {std::tuple(one, &found.first, found.firstState.state), {other, &found.second, found.secondState.state}}) {
      const bool unfinished = state != RunState::Finished;
      table.Add({{name},
                 {LocalTime(root->startedAt, false)},
                 {unfinished ? "" : DurationInWords(*root, false)},
                 {unfinished ? UnfinishedInWords(state) : StateInWords(*root), IsAlarming(state)},
                 {ActivityInWords(*root)},
                 {Shown(root->node)}});
    }
    table.Finish();
  }

  void WriteParting() const {
    const Compared* const parting = summary.Parting();
    if (parting == nullptr) {
      WriteOut(found.AreNone(summary) ? "\nNothing differs.\n" : "\nBoth have the same events and values.\n");
      return;
    }
    std::string line = "\nThey first part";
    const std::optional<long long> start = Microseconds(found.first.startedAt);
    if (parting->at) {
      line += " at " + LocalTime(ToStoredTime(Time(std::chrono::microseconds(*parting->at))), true);
      line +=
          start ? ", " + Duration(static_cast<double>(*parting->at - *start) / 1e6, false) + " after the start" : "";
    }
    WriteOut(line + ":\n");
    Line("  " + WhereOf(*parting, true));
    Line("  " + WhatOf(*parting));
  }

  std::string WhatOf(const Compared& compared) const {
    switch (compared.kind) {
      case Kind::Execution:
      case Kind::Event:
        return "only in " + SideOf(compared);
      case Kind::Order:
      case Kind::EventOrder:
        return "in another order";
      default:
        break;
    }
    std::string words = compared.kind == Kind::Status ? "state" : NameOf(compared.parameter, compared.occurrence);
    const auto [value, otherValue] = BothOf(compared);
    words += ": " + value + " in " + one + ", " + otherValue + " in " + other;
    return compared.by ? words + ", a difference of " + DifferenceOf(compared) : words;
  }

  std::string SideOf(const Compared& compared) const { return compared.first != Matching::none ? one : other; }

  static std::string NameOf(const std::string& name, std::size_t occurrence) {
    return Shown(name) + (occurrence > 1 ? " (" + std::to_string(occurrence) + ')' : "");
  }

  /// The path of an execution and, if it is about one, the event.
  std::string WhereOf(const Compared& compared, bool withRoot) const {
    const bool isFirst = compared.first != Matching::none;
    const RunTree& tree = isFirst ? comparison.First() : comparison.Second();
    std::string words;
    for (std::size_t place = isFirst ? compared.first : compared.second;; place = tree.At(place).parent) {
      if (place != tree.Root() || withRoot || words.empty()) {
        words.insert(0, NameOf(tree.At(place).node, tree.At(place).ordinal) + (words.empty() ? "" : " > "));
      }
      if (place == tree.Root()) {
        break;
      }
    }
    const std::size_t occurrence = isFirst ? compared.firstOccurrence : compared.secondOccurrence;
    return occurrence > 0 ? words + " > " + Shown(compared.event) + ' ' + std::to_string(occurrence) : words;
  }

  static std::string StateOf(const TreeNode& node, Hosts& hosts) {
    Execution execution;
    execution.key = node.key;
    execution.status = node.status;
    return StateInWords(execution, hosts.Of(execution).state);
  }

  std::string InWords(const Compared& compared, bool ofFirst, int digits) const {
    const std::optional<Value>& value = ofFirst ? compared.firstValue : compared.secondValue;
    if (!value) {
      return nothing;
    }
    if (compared.kind == Kind::Status) {
      return ofFirst ? StateOf(comparison.First().At(compared.first), found.firstHosts)
                     : StateOf(comparison.Second().At(compared.second), found.secondHosts);
    }
    if (compared.kind == Kind::Duration) {
      return Duration(*value->number, true);
    }
    return value->IsNumber() ? NumberInWords(*value->number, digits) : Printable(value->words);
  }

  // Both values; with all digits if they look the same with fewer.
  std::pair<std::string, std::string> BothOf(const Compared& compared) const {
    for (const int digits : {options.digits, allDigits}) {
      std::pair both(InWords(compared, true, digits), InWords(compared, false, digits));
      if (both.first != both.second || digits == allDigits) {
        return both;
      }
    }
    return {};
  }

  std::string DifferenceOf(const Compared& compared) const {
    const std::string words = compared.by ? NumberInWords(*compared.by, options.digits) : "";
    return compared.by && *compared.by > 0 ? '+' + words : words;
  }

  void WriteAlone() const {
    for (const bool isFirst : {true, false}) {
      bool titled = false;
      for (const auto& [key, group] : summary.Groups()) {
        if ((key.kind == Kind::Execution || key.kind == Kind::Event) && key.isFirstAlone == isFirst) {
          titled = titled || (Title("Only in " + (isFirst ? one : other)), true);
          WriteGroup(group);
        }
      }
    }
    bool titled = false;
    for (const auto& [key, group] : summary.Groups()) {
      if ((key.kind == Kind::Order || key.kind == Kind::EventOrder) && group.differ > 0) {
        titled = titled || (Title("In another order"), true);
        WriteGroup(group);
      }
    }
  }

  void WriteGroup(const Group& group) const {
    for (const Compared& compared : group.first) {
      const bool isFirst = compared.first != Matching::none;
      std::string line = "  " + WhereOf(compared, false);
      if (compared.kind == Kind::Execution) {
        const std::size_t below =
            isFirst ? comparison.First().CountBelow(compared.first) : comparison.Second().CountBelow(compared.second);
        line += below > 0 ? ", with " + std::to_string(below) + " below it" : "";
      }
      Line(line);
    }
    if (const auto more = group.differ - static_cast<long long>(group.first.size()); more > 0) {
      Line("  and " + std::to_string(more) + " more" +
           (group.first.front().event.empty() ? "" : " events " + Shown(group.first.front().event)));
    }
  }

  // States and parameters.
  void WriteTables() const {
    TextTable table({{"what", false, true},
                     {"differs"},
                     {"where", false, false, true},
                     {one, false, true},
                     {other, false, true},
                     {"difference", true}});
    bool any = false;
    for (const auto& [key, group] : summary.Groups()) {
      if (key.kind != Kind::Status && key.kind != Kind::Parameter) {
        continue;
      }
      if (group.differ > 0) {
        any = any || (WriteOut("\n"), true);
        AddGroup(table, key, group);
      } else if (options.all) {
        any = any || (WriteOut("\n"), true);
        table.Add({{TitleOf(key)}, {"same in all " + std::to_string(group.compared)}, {}, {}, {}, {}});
      }
    }
    if (any) {
      table.Finish();
    }
  }

  static std::string TitleOf(const Summary::Key& key) {
    return key.kind == Kind::Status ? "state" : Shown(key.name) + ' ' + NameOf(key.parameter, key.occurrence);
  }

  // What differs nearly everywhere, or by the same values each time, is said once; else each of the first few is.
  void AddGroup(TextTable& table, const Summary::Key& key, const Group& group) const {
    std::string title = TitleOf(key);
    std::string count = (group.differ == group.compared ? "all " : std::to_string(group.differ) + " of ") +
                        std::to_string(group.compared);
    const auto add = [&](const Compared& compared) {
      const auto [value, otherValue] = BothOf(compared);
      const auto isNumber = [](const std::optional<Value>& cell) { return cell && cell->IsNumber(); };
      table.Add({{title},
                 {count},
                 {WhereOf(compared, false)},
                 {value, false, isNumber(compared.firstValue)},
                 {otherValue, false, isNumber(compared.secondValue)},
                 {DifferenceOf(compared)}});
      title = "";
      count = "";
    };
    const bool once = key.kind == Kind::Parameter && (group.constant || group.IsAlwaysDifferent());
    for (const Compared& compared : group.first) {
      add(compared);
      if (once) {
        break;
      }
    }
    if (group.largest && !group.constant && (once || group.differ > static_cast<long long>(group.first.size()))) {
      count = "largest";
      add(*group.largest);
    }
  }

  void WriteVersions() const {
    bool titled = false;
    for (const auto& [key, group] : summary.Groups()) {
      if (key.kind == Kind::Version && group.differ > 0) {
        titled = titled || (Title("Versions of activities"), true);
        Line("  " + Printable(key.name) + " in " + one + ", " + Printable(key.parameter) + " in " + other + ": " +
             std::to_string(group.differ) + (group.differ == 1 ? " execution" : " executions"));
      }
    }
  }

  void WriteConfiguration() const {
    bool titled = false;
    found.ForEachChangedLine([&](const ChangedLine& line) {
      titled = titled || (Title("Instrument configuration: - only in " + other + ", + only in " + one), true);
      const std::size_t number = line.first ? *line.first : *line.second;
      Line("  " + std::string(line.first ? "+" : "-") + (number > 0 ? std::to_string(number) : "") + ' ' +
           Printable(line.text));
    });
  }

  void WriteDurations() const {
    for (const auto& [key, group] : summary.Groups()) {
      if (key.kind != Kind::Duration || group.differ == 0) {
        continue;
      }
      Title("Durations: " + std::to_string(group.differ) + " of " + std::to_string(group.compared) + " differ");
      TextTable table({{"where", false, false, true}, {one, true}, {other, true}, {"times", true}});
      const auto add = [&](const std::string& where, const Compared& compared) {
        table.Add({{"  " + where + WhereOf(compared, false)},
                   {BothOf(compared).first},
                   {BothOf(compared).second},
                   {NumberInWords(*compared.by, 3)}});
      };
      for (const Compared& compared : group.first) {
        add("", compared);
      }
      if (group.largest && group.differ > static_cast<long long>(group.first.size())) {
        add("largest: ", *group.largest);
      }
      table.Finish();
    }
  }

  // Every difference on a line of its own.
  void WriteEach() const {
    Title("Each difference");
    comparison.Visit([&](const Compared& compared) {
      if (compared.differs && compared.kind != Kind::Version) {
        Line("  " + WhereOf(compared, false) + ": " +
             (compared.kind == Kind::Duration ? DurationsOf(compared) : WhatOf(compared)));
      }
    });
  }

  std::string DurationsOf(const Compared& compared) const {
    const auto [duration, otherDuration] = BothOf(compared);
    return "duration: " + duration + " in " + one + ", " + otherDuration + " in " + other;
  }

  const Differences& found;
  const Comparison& comparison;
  const Summary& summary;
  const InWordsOptions& options;
  std::string one, other;  // how the runs are called
  const Terminal terminal;
};

}  // namespace

void WriteDifferencesInWords(const Differences& found, const Summary& summary, const InWordsOptions& options) {
  Writer(found, summary, options).Write();
}

}  // namespace Velora::Ts

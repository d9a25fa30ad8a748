#include "comparing/DifferenceWords.h"
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

class Writer {
 public:
  Writer(const Differences& found, const Summary& summary, const InWordsOptions& options)
      : found(found), comparison(found.comparison), summary(summary), options(options), words(found, options.digits) {}

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
    Line("  " + words.Where(*parting, true));
    Line("  " + words.What(*parting));
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
      std::string line = "  " + words.Where(compared, false);
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
    return key.kind == Kind::Status ? "state"
                                    : Shown(key.name) + ' ' + DifferenceWords::Name(key.parameter, key.occurrence);
  }

  // What differs nearly everywhere, or by the same values each time, is said once; else each of the first few is.
  void AddGroup(TextTable& table, const Summary::Key& key, const Group& group) const {
    std::string title = TitleOf(key);
    std::string count = (group.differ == group.compared ? "all " : std::to_string(group.differ) + " of ") +
                        std::to_string(group.compared);
    const auto add = [&](const Compared& compared) {
      const auto [value, otherValue] = words.Both(compared);
      const auto isNumber = [](const std::optional<Value>& cell) { return cell && cell->IsNumber(); };
      table.Add({{title},
                 {count},
                 {words.Where(compared, false)},
                 {value, false, isNumber(compared.firstValue)},
                 {otherValue, false, isNumber(compared.secondValue)},
                 {words.Difference(compared)}});
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
        table.Add({{"  " + where + words.Where(compared, false)},
                   {words.Both(compared).first},
                   {words.Both(compared).second},
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
        Line("  " + words.Where(compared, false) + ": " +
             (compared.kind == Kind::Duration ? words.Durations(compared) : words.What(compared)));
      }
    });
  }

  const Differences& found;
  const Comparison& comparison;
  const Summary& summary;
  const InWordsOptions& options;
  const DifferenceWords words;
  const std::string &one = words.One(), &other = words.Other();
  const Terminal terminal;
};

}  // namespace

void WriteDifferencesInWords(const Differences& found, const Summary& summary, const InWordsOptions& options) {
  Writer(found, summary, options).Write();
}

}  // namespace Velora::Ts

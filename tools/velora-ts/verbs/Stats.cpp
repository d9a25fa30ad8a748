#include "asking/Statistics.h"
#include "asking/TimeArgument.h"
#include "output/Output.h"
#include "output/OutputFile.h"
#include "output/TextTable.h"
#include "output/Times.h"
#include "output/Units.h"
#include "output/Words.h"
#include "page/writer/Frame.h"
#include "store/reading/Runs.h"
#include "store/settings/Settings.h"
#include "store/values/Json.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"
#include "verbs/AbsentNames.h"
#include "verbs/DigitsOption.h"
#include "verbs/StoreVerb.h"
#include "verbs/WindowOptions.h"

#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

const std::map<std::string, GroupBy> ways = {{"", GroupBy::Nothing},
                                             {"run", GroupBy::Run},
                                             {"day", GroupBy::Day},
                                             {"month", GroupBy::Month},
                                             {"instrument", GroupBy::Instrument},
                                             {"activity", GroupBy::Activity}};

Time TimeOf(const std::string& beginning) {
  return Time(std::chrono::microseconds(Microseconds(beginning).value_or(0)));
}

/// The period from which drifts are counted: what --against says, or one as long as the window, directly before it.
std::optional<Period> PeriodBefore(const std::string& against, const Store::EventWindow& window) {
  static constexpr std::string_view dots = "..";
  if (const std::size_t at = against.find(dots); at != std::string::npos) {
    return Period(TimeArgument(against.substr(0, at)), TimeArgument(against.substr(at + dots.size())));
  }
  if (!against.empty()) {
    throw UsageError("--against '" + against + "': expected two times, such as 2026-10-01..2026-11-01");
  }
  if (window.from.empty()) {
    return std::nullopt;
  }
  const Time from = TimeOf(window.from);
  const Time end = window.before == afterAllTimes ? Now() : TimeOf(window.before);
  return end > from ? std::optional(Period(ToStoredTime(from - (end - from)), ToStoredTime(from))) : std::nullopt;
}

/// A table with a row for each group.
class StatisticsTable {
 public:
  /// @param head the name and the unit of the parameter.
  StatisticsTable(const std::string& head, const std::string& by, bool hasDrift, int digits)
      : isOfRuns(by == "run"), hasDrift(hasDrift), digits(digits), table(ColumnsOf(head, by, hasDrift)) {}

  void Add(const GroupSummary& group, bool isGroup) {
    TextTable::Row row;
    if (isOfRuns) {
      row = {{isGroup ? Printable(group.run.substr(0, shortGuid)) : group.name},
             {isGroup ? LocalTime(group.firstAt, false) : ""},
             {isGroup ? Shown(group.name) : ""}};
    } else {
      row = {{isGroup && group.name.empty() ? "-" : Shown(group.name)}};
    }
    const Distribution& distribution = group.distribution;
    row.push_back({std::to_string(distribution.count)});
    const auto add = [&](double number) {
      row.push_back({distribution.count > 0 && !std::isnan(number) ? NumberInWords(number, digits) : ""});
    };
    add(distribution.lowest);
    for (const double quantile : distribution.quantiles) {
      add(quantile);
    }
    add(distribution.highest);
    add(distribution.mean);
    add(distribution.deviation);
    if (hasDrift) {
      add(group.drift.value_or(std::nan("")));
    }
    table.Add(row);
  }
  void Finish() { table.Finish(); }

 private:
  static std::vector<TextTable::Column> ColumnsOf(const std::string& head, const std::string& by, bool hasDrift) {
    std::vector<TextTable::Column> columns;
    columns.push_back({.title = head + (by.empty() ? "" : " by " + by), .whole = true});
    if (by == "run") {
      columns.push_back({.title = "first", .times = TextTable::Times::Dated});
      columns.push_back({.title = "node", .yielding = true});
    }
    for (const std::string title :
         {"count", "min", "5 %", "25 %", "median", "75 %", "95 %", "max", "mean", "deviation"}) {
      columns.push_back({.title = title, .number = true, .yielding = title == "5 %" || title == "95 %"});
    }
    if (hasDrift) {
      columns.push_back({.title = "drift", .number = true});
    }
    return columns;
  }

  const bool isOfRuns, hasDrift;
  const int digits;
  TextTable table;
};

class StatsVerb : public StoreVerb {
 public:
  explicit StatsVerb(Options& options) : StoreVerb(options), window(options), digits(options) {
    options.AddRequiredText("PARAMETER", parameter, "The name of the parameter");
    options.AddChoice("--by", by, {"run", "day", "month", "instrument", "activity"},
                      "A row for each run, local day, local month, instrument, or activity version of the execution");
    options.AddText("--against", against,
                    "The period from which the drift is counted, as TIME..TIME. Default: directly before --since, and "
                    "as long as from there to --until, or to now",
                    "TIME..TIME");
    options.AddText("--plot", plot, "Write a page with a plot over time to this file, instead of the table", "FILE");
    options.AddFlag("--json", json, "Write a JSON object, with times in UTC");
  }

  ExitCode Execute() override {
    // First, because a build may lack it.
    const std::optional<Page::Frame> frame = plot.empty() ? std::nullopt : std::optional(Page::StatisticsFrame());
    const Store::EventWindow asked = window.Window();
    const int shown = digits.Value();
    const std::optional<Period> before = PeriodBefore(against, asked);
    const std::string name = ToStoredText(parameter);
    const Settings settings = StoreSettings();
    const Reader store(settings.database);
    const Statistics statistics = StatisticsOf(store, asked, name, ways.at(by), before, frame.has_value());
    if (!statistics.HasAny()) {
      return ExplainAbsence(store, Named::Parameter, name);
    }
    if (frame) {
      WritePage(*frame, statistics, name, settings);
    } else if (json) {
      WriteData(AsJson(statistics, name, by) + "}\n");
    } else {
      WriteTable(statistics, Units(settings.units).Head(parameter), shown);
    }
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

 private:
  void WritePage(const Page::Frame& frame, const Statistics& statistics, const std::string& name,
                 const Settings& settings) const {
    std::string data = AsJson(statistics, name, by) + ",\n\"unit\":";
    AppendText(data, Units(settings.units).Of(name));
    OutputFile page("page", plot, beginningOfPages);
    Page::WriteFramed(
        frame, [&page](std::string_view text) { page.Write(text); },
        [&data](const Page::Write& write) { write(data + '}'); });
    page.Finish();
    Complain(std::to_string(statistics.all.distribution.count) + " numbers, written to '" + plot + "', " +
             std::to_string(page.Bytes()) + " bytes");
  }

  void WriteTable(const Statistics& statistics, const std::string& head, int shown) const {
    StatisticsTable table(head, by, statistics.before.has_value(), shown);
    if (!by.empty()) {
      for (const GroupSummary& group : statistics.groups) {
        table.Add(group, true);
      }
    }
    table.Add(statistics.all, false);
    if (statistics.before) {
      table.Add(*statistics.before, false);
    }
    table.Finish();
    if (statistics.before) {
      Say("before: from " + LocalTime(ToStoredTime(TimeOf(statistics.before->firstAt)), false) + " to before " +
          LocalTime(ToStoredTime(TimeOf(statistics.before->lastAt)), false));
    }
    if (statistics.others > 0) {
      Say("not counted: " + std::to_string(statistics.others) +
          (statistics.others == 1 ? " value that is no finite number" : " values that are no finite numbers"));
    }
  }

  WindowOptions window;
  DigitsOption digits;
  std::string parameter, by, against, plot;
  bool json = false;
};

}  // namespace

extern const Registration registeredStats = {
    "stats",
    "Shows what the numbers of a parameter are like: count, minimum, quantiles, maximum, mean, standard deviation, and "
    "the drift of the median from a period before.",
    "stats Defocus --since 2026-11 --by instrument", &Make<StatsVerb>};

}  // namespace Velora::Ts

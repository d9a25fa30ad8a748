#include "asking/Statistics.h"

#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/RecordedText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long mostBins = 200;
constexpr std::size_t mostDrawn = 5000;  // numbers that are drawn one by one

/// Whether a group can have the same name in the period before.
bool HasTwins(GroupBy by) { return by == GroupBy::Instrument || by == GroupBy::Activity; }

/// How many parts of its time are drawn of a group. A run, a day or a month is one.
long long BinsOf(GroupBy by) { return HasTwins(by) || by == GroupBy::Nothing ? mostBins : 1; }

/// Divides the time of a group into equal parts, and keeps each number if they are to be drawn. Its numbers must still
/// be in the order of their times.
void DivideTime(GroupSummary& group, const NumberGroup& found, long long parts, bool drawn) {
  if (found.times.empty()) {
    return;
  }
  const auto [first, last] = std::minmax_element(found.times.begin(), found.times.end());
  const long long length = (*last - *first) / parts + 1;
  std::map<long long, std::pair<Bin, Numbers>> bins;
  for (std::size_t place = 0; place < found.times.size(); ++place) {
    const long long at = found.times[place];
    auto& [bin, numbers] = bins[(at - *first) / length];
    bin.from = numbers.Count() == 0 ? at : std::min(bin.from, at);
    bin.to = std::max(bin.to, at);
    numbers.Add(found.numbers[place]);
    if (drawn) {
      group.each.emplace_back(at, found.numbers[place]);
    }
  }
  for (auto& [number, one] : bins) {
    one.first.distribution = one.second.Summarize();
    group.bins.push_back(one.first);
  }
}

/// Puts the node of each run in the place of its time and key.
void NameRuns(const Store::Reader& store, std::vector<GroupSummary>& groups) {
  Rows run(store, "SELECT node, guid FROM executions WHERE execution_id = ?1");
  for (GroupSummary& group : groups) {
    const std::string key = group.name.substr(group.name.find(' ') + 1);
    group.name.clear();
    if (!key.empty() && run.Ask(std::stoll(key)).Next()) {
      group.name = run.Text(0);
      group.run = run.Text(1);
    }
  }
}

/// The median of a distribution, if it has one.
std::optional<double> MedianOf(const Distribution& distribution) {
  return distribution.count > 0 ? std::optional(distribution.quantiles[Distribution::median]) : std::nullopt;
}

class StatisticsReader {
 public:
  StatisticsReader(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter)
      : store(store), window(window), parameter(parameter) {}

  void ReadBefore(const Period& period, GroupBy by) {
    Store::EventWindow earlier = window;
    std::tie(earlier.from, earlier.before) = period;
    NumberGroups found(store, earlier, parameter, HasTwins(by) ? by : GroupBy::Nothing);
    Numbers all;
    for (auto& [name, group] : found.groups) {
      medians[name] = MedianOf(group.numbers.Summarize());
      all.Take(group.numbers);
    }
    statistics.before = {"before", "", period.first, period.second, all.Summarize(), {}, {}, {}};
  }

  void Read(GroupBy by, bool withBins) {
    NumberGroups found(store, window, parameter, by, withBins);
    statistics.others = found.others;
    Numbers all;
    GroupSummary& total = statistics.all;
    for (auto& [name, group] : found.groups) {
      GroupSummary line{name, "", group.firstAt, group.lastAt, {}, {}, {}, {}};
      DivideTime(line, group, BinsOf(by), found.count <= mostDrawn);
      line.distribution = group.numbers.Summarize();
      line.drift = DriftOf(line, HasTwins(by));
      total.firstAt = total.firstAt.empty() ? line.firstAt : std::min(total.firstAt, line.firstAt);
      total.lastAt = std::max(total.lastAt, line.lastAt);
      all.Take(group.numbers);
      group.times.clear();
      statistics.groups.push_back(std::move(line));
    }
    total.name = "all";
    total.distribution = all.Summarize();
    total.drift = DriftOf(total, false);
    if (by == GroupBy::Run) {
      NameRuns(store, statistics.groups);
    }
  }

  Statistics statistics;

 private:
  std::optional<double> DriftOf(const GroupSummary& line, bool isTwin) const {
    std::optional<double> before = statistics.before ? MedianOf(statistics.before->distribution) : std::nullopt;
    if (isTwin) {
      const auto twin = medians.find(line.name);
      before = twin == medians.end() ? std::nullopt : twin->second;
    }
    const std::optional<double> now = MedianOf(line.distribution);
    return before && now ? std::optional(*now - *before) : std::nullopt;
  }

  const Store::Reader& store;
  const Store::EventWindow& window;
  const std::string& parameter;
  std::map<std::string, std::optional<double>> medians;  // of the groups of the period before
};

void AppendMember(std::string& json, const char* name, std::optional<double> number) {
  json += std::string(",\"") + name + "\":";
  if (number && !std::isnan(*number)) {
    AppendNumber(json, *number);
  } else {
    json += "null";
  }
}

void AppendDistribution(std::string& json, const Distribution& distribution) {
  static constexpr std::array names = {"q05", "q25", "median", "q75", "q95"};
  const auto any = [&](double number) { return distribution.count > 0 ? std::optional(number) : std::nullopt; };
  json += "\"count\":" + std::to_string(distribution.count);
  AppendMember(json, "min", any(distribution.lowest));
  for (std::size_t number = 0; number < names.size(); ++number) {
    AppendMember(json, names[number], any(distribution.quantiles[number]));
  }
  AppendMember(json, "max", any(distribution.highest));
  AppendMember(json, "mean", any(distribution.mean));
  AppendMember(json, "deviation", any(distribution.deviation));
}

void AppendBins(std::string& json, const GroupSummary& group) {
  json += ",\"bins\":[";
  for (const Bin& bin : group.bins) {
    json += (json.ends_with('[') ? "{\"from\":" : ",{\"from\":") + std::to_string(bin.from) +
            ",\"to\":" + std::to_string(bin.to) + ',';
    AppendDistribution(json, bin.distribution);
    json += '}';
  }
  json += "],\"each\":[";
  for (const auto& [at, number] : group.each) {
    json += (json.ends_with('[') ? "[" : ",[") + std::to_string(at) + ',';
    AppendNumber(json, number);
    json += ']';
  }
  json += ']';
}

void AppendGroup(std::string& json, const GroupSummary& group) {
  const auto add = [&](const char* name, const std::string& text) {
    json += std::string("\"") + name + "\":";
    AppendText(json, text);
    json += ',';
  };
  json += '{';
  add("name", group.name);
  if (!group.run.empty()) {
    add("run", group.run);
  }
  add("first_at", group.firstAt);
  add("last_at", group.lastAt);
  AppendDistribution(json, group.distribution);
  AppendMember(json, "drift", group.drift);
  if (!group.bins.empty()) {
    AppendBins(json, group);
  }
  json += '}';
}

}  // namespace

Statistics StatisticsOf(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter,
                        GroupBy by, const std::optional<Period>& before, bool withBins) {
  StatisticsReader reader(store, window, parameter);
  if (before) {
    reader.ReadBefore(*before, by);
  }
  reader.Read(by, withBins);
  return std::move(reader.statistics);
}

std::string AsJson(const Statistics& statistics, const std::string& parameter, const std::string& by) {
  std::string json = "{\"parameter\":";
  AppendText(json, parameter);
  json += ",\"by\":";
  AppendText(json, by);
  json += ",\"not_counted\":" + std::to_string(statistics.others) + ",\"groups\":[";
  for (const GroupSummary& group : statistics.groups) {
    json += json.ends_with('[') ? "\n" : ",\n";
    AppendGroup(json, group);
  }
  json += "],\n\"all\":";
  AppendGroup(json, statistics.all);
  json += ",\n\"before\":";
  if (statistics.before) {
    AppendGroup(json, *statistics.before);
  } else {
    json += "null";
  }
  return json;
}

}  // namespace Velora::Ts

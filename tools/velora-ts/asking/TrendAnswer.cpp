#include "asking/TrendAnswer.h"

#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <array>
#include <set>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t eventsAtOnce = 50;  // neighbours, so that a server looks into few months
constexpr std::size_t longestName = 200;  // bytes

/// Finds the runs of events, with few questions.
void FindRuns(OpenStore& store, const std::set<long long>& events) {
  std::string some;
  std::size_t count = 0;
  for (const long long event : events) {
    some += (some.empty() ? "" : ", ") + std::to_string(event);
    if (++count % eventsAtOnce != 0 && count != events.size()) {
      continue;
    }
    for (Rows rows(*store.reader,
                   "SELECT v.event_id, (SELECT r.guid FROM executions x CROSS JOIN executions r WHERE x.execution_id = "
                   "v.execution_id AND r.execution_id = x.root_id) FROM events v WHERE v.event_id IN (" +
                       some + ')');
         rows.Next();) {
      if (!rows.IsNull(1)) {
        store.runs.emplace(rows.Integer(0), rows.Whole(1));
      }
    }
    some.clear();
  }
}

/// A name of any length is cut before a character that would end behind the longest.
std::string_view Cut(std::string_view name) {
  std::size_t length = std::min(name.size(), longestName);
  while (length < name.size() && length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80U) {
    --length;
  }
  return name.substr(0, length);
}

class TrendWriter {
 public:
  TrendWriter(const TrendPicture& picture, std::list<OpenStore>& stores) : picture(picture), stores(stores) {
    std::map<int, std::set<long long>> events;
    const auto meet = [&](const TrendGroup& group) {
      for (const auto& [number, bin] : group.bins) {
        events[bin.Lowest().store].insert(bin.Lowest().event);
        events[bin.Highest().store].insert(bin.Highest().event);
      }
    };
    std::for_each(picture.groups.begin(), picture.groups.end(), meet);
    meet(picture.rest);
    for (OpenStore& store : stores) {
      FindRuns(store, events[store.number]);
    }
  }

  std::string Write(const TrendQuestion& question) {
    std::string groups;
    for (const TrendGroup& group : picture.groups) {
      groups += groups.empty() ? "" : ",";
      AppendGroup(groups, group);
    }
    std::string rest = "null";
    if (picture.together > 0) {
      rest = "{\"groups\":" + std::to_string(picture.together) + ",\"group\":";
      AppendGroup(rest, picture.rest);
      rest += '}';
    }
    std::string json = "{\"parameter\":";
    AppendText(json, question.parameter);
    json += ",\"by\":";
    AppendText(json, question.by);
    json += ",\"count\":" + std::to_string(count) + ",\"not_counted\":" + std::to_string(others) +
            ",\"bin_microseconds\":" + std::to_string(picture.width) + ",\"quantile_error\":";
    AppendNumber(json, error);
    return json + ",\"groups\":[" + groups + "],\"others\":" + rest;
  }

 private:
  void AppendGroup(std::string& json, const TrendGroup& group) {
    count += group.count;
    others += group.others;
    json += "\n{\"name\":";
    AppendText(json, Cut(group.name));
    json += ",\"count\":" + std::to_string(group.count) + ",\"not_counted\":" + std::to_string(group.others) +
            ",\"bins\":[";
    for (const auto& [number, bin] : group.bins) {
      if (bin.Count() > 0) {
        json += json.ends_with('[') ? "\n" : ",\n";
        AppendBin(json, number, bin);
      }
    }
    json += "]}";
  }

  void AppendBin(std::string& json, long long number, const TrendCell& bin) {
    static constexpr std::array names = {"q05", "q25", "median", "q75", "q95"};
    json += "{\"from\":\"" + TimeText(number * picture.width) + "\",\"to\":\"" +
            TimeText((number + 1) * picture.width) + "\",\"count\":" + std::to_string(bin.Count()) + ",\"min\":";
    AppendNumber(json, bin.Lowest().number);
    const auto quantiles = bin.Quantiles();
    for (std::size_t quantile = 0; quantile < names.size(); ++quantile) {
      json += std::string(",\"") + names[quantile] + "\":";
      AppendNumber(json, quantiles[quantile]);
    }
    json += ",\"max\":";
    AppendNumber(json, bin.Highest().number);
    json += ",\"lowest\":";
    AppendRun(json, bin.Lowest());
    json += ",\"highest\":";
    AppendRun(json, bin.Highest());
    json += '}';
    error = std::max(error, bin.Error() > 0 ? (bin.Error() + 1) / static_cast<double>(bin.Count()) : 0);
  }

  void AppendRun(std::string& json, const TrendCell::Extreme& extreme) const {
    for (const OpenStore& store : stores) {
      const auto run = store.number == extreme.store ? store.runs.find(extreme.event) : store.runs.end();
      if (run != store.runs.end()) {
        json += "{\"store\":" + std::to_string(store.number) + ",\"run\":";
        AppendText(json, run->second);
        json += '}';
        return;
      }
    }
    json += "null";
  }

  const TrendPicture& picture;
  std::list<OpenStore>& stores;
  std::size_t count = 0, others = 0;
  double error = 0;
};

}  // namespace

std::string AsJson(const TrendPicture& picture, std::list<OpenStore>& stores, const TrendQuestion& question) {
  return TrendWriter(picture, stores).Write(question);
}

std::string TimeText(long long at) {
  static constexpr long long first = -62167219200000000, last = 253402300799999999;  // that can be stored
  return ToStoredTime(Time(std::chrono::microseconds(std::clamp(at, first, last))));
}

}  // namespace Velora::Ts

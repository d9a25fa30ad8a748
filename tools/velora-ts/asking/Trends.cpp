#include "asking/Trends.h"

#include "asking/TrendGroups.h"
#include "asking/TrendReading.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <array>
#include <list>
#include <set>
#include <unordered_map>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::size_t eventsAtOnce = 500;
constexpr std::size_t longestName = 200;  // bytes

struct OpenStore {
  OpenStore(int number, const Database& database) : number(number), reader(database) {}

  const int number;
  const Reader reader;
  std::unordered_map<long long, std::string> runs = {};  // the guids of the runs of events
};

/// Finds the runs of events, with few questions.
void FindRuns(OpenStore& store, const std::set<long long>& events) {
  std::string some;
  std::size_t count = 0;
  for (const long long event : events) {
    some += (some.empty() ? "" : ", ") + std::to_string(event);
    if (++count % eventsAtOnce != 0 && count != events.size()) {
      continue;
    }
    for (Rows rows(store.reader,
                   "SELECT v.event_id, r.guid FROM events v CROSS JOIN executions x CROSS JOIN executions r WHERE "
                   "v.event_id IN (" +
                       some + ") AND x.execution_id = v.execution_id AND r.execution_id = x.root_id");
         rows.Next();) {
      store.runs.emplace(rows.Integer(0), rows.Whole(1));
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

std::string TimeText(long long at) {
  static constexpr long long first = -62167219200000000, last = 253402300799999999;  // that can be stored
  return ToStoredTime(Time(std::chrono::microseconds(std::clamp(at, first, last))));
}

/// Stores that are not in an answer, and why.
using LeftOut = std::map<int, std::string>;

/// Leaves out a store whose records are also in another.
void KeepEachOnce(std::list<OpenStore>& stores, LeftOut& leftOut) {
  std::map<std::string, int> takenIn;
  for (const OpenStore& store : stores) {
    for (const KnownStore& known : KnownStores(store.reader)) {
      if (known.number != thisStore && !known.guid.empty()) {
        takenIn[known.guid] = store.number;
      }
    }
  }
  for (const OpenStore& store : stores) {
    const auto other = takenIn.find(KnownStores(store.reader).front().guid);
    if (other != takenIn.end() && other->second != store.number && !leftOut.contains(other->second)) {
      leftOut[store.number] = "its records are also in store " + std::to_string(other->second);
    }
  }
}

void Open(const std::vector<TrendStore>& asked, std::list<OpenStore>& stores, LeftOut& leftOut) {
  for (const TrendStore& store : asked) {
    try {
      stores.emplace_back(store.number, store.database);
    } catch (const Error& error) {
      if (asked.size() == 1) {
        throw;
      }
      leftOut[store.number] = error.what();
    }
  }
  if (stores.empty()) {
    throw Error("no store can be read: " + leftOut.begin()->second);
  }
  if (stores.size() > 1) {
    KeepEachOnce(stores, leftOut);
    std::erase_if(stores, [&](const OpenStore& store) { return leftOut.contains(store.number); });
  }
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

std::string Trends::Answer(const std::vector<TrendStore>& asked, const TrendQuestion& question) {
  std::list<OpenStore> stores;
  LeftOut leftOut;
  Open(asked, stores, leftOut);
  std::vector<TrendPart> parts;
  for (const OpenStore& store : stores) {
    TrendSummary summary = ReadWindow(store.reader, question.window, question.parameter);
    parts.push_back({store.number, summary.Width(), summary.AllCells(),
                     GroupsOf(store.reader, summary.Sources(), question, false)});
  }
  const TrendPicture picture(parts);
  std::string json = TrendWriter(picture, stores).Write(question);
  for (const OpenStore& store : stores) {
    store.reader.ExpectUntouched();
  }
  json += ",\"left_out\":[";
  for (const auto& [store, why] : leftOut) {
    json += (json.ends_with('[') ? "{\"store\":" : ",{\"store\":") + std::to_string(store) + ",\"why\":";
    AppendText(json, why);
    json += '}';
  }
  return json + ']';
}

}  // namespace Velora::Ts

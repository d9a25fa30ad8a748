#include "page/writer/KeptEvents.h"

#include "store/reading/Reader.h"
#include "store/reading/Stops.h"
#include "store/reading/Unfinished.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Velora::Page {

using namespace Store;

KeptEvents::KeptEvents(const Store::Reader& store, long long root) {
  Count(store, root);
  if (!binned.empty()) {
    Choose(store, root);
  }
}

bool KeptEvents::Keeps(const Event& event) const {
  return binned.count(event.name) == 0 || std::binary_search(kept.begin(), kept.end(), event.number);
}

std::string KeptEvents::InWords() const {
  const std::string all = std::to_string(recorded) + " events";
  if (binned.empty()) {
    return "all " + all;
  }
  const auto drawn = recorded - ofBinnedKinds + static_cast<long long>(kept.size());
  return "binned: " + std::to_string(drawn) + " of " + all + " (of " + std::to_string(binned.size()) + " of " +
         std::to_string(kinds) + " kinds those with the lowest and highest values in each of " +
         std::to_string(sliceCount) + " slices of time, and the newest of each execution)";
}

void KeptEvents::AppendSlices(std::string& json, long long start) const {
  if (binned.empty()) {
    json += "null";
    return;
  }
  json += "{\"from\":" + std::to_string(first - start) + ",\"to\":" + std::to_string(last - start) + ",\"kinds\":[";
  const char* separator = "";
  for (const auto& [name, kind] : binned) {
    json += separator;
    json += "{\"name\":";
    AppendText(json, name);
    json += ",\"recorded\":" + std::to_string(kind.recorded) + ",\"counts\":[";
    const char* comma = "";
    for (const long long count : kind.inSlice) {
      json += comma + std::to_string(count);
      comma = ",";
    }
    json += "]}";
    separator = ",";
  }
  json += "]}";
}

void KeptEvents::Count(const Store::Reader& store, long long root) {
  Rows rows(store,
            "SELECT e.name, e.at FROM executions x JOIN events e ON e.execution_id = x.execution_id "
            "WHERE x.root_id = ?1");
  std::map<std::string, long long, std::less<>> counts;
  std::string earliest, latest;
  for (rows.Ask(root); rows.Next(); ++recorded) {
    const auto name = counts.find(rows.Text(0));
    ++(name != counts.end() ? name : counts.emplace(rows.Text(0), 0).first)->second;
    const std::string_view at = rows.Text(1);
    if (earliest.empty() || at < earliest) {
      earliest = at;
    }
    if (at > latest) {
      latest = at;
    }
  }
  first = Microseconds(earliest).value_or(0);
  last = std::max(first, Microseconds(latest).value_or(0));
  kinds = counts.size();
  std::vector<std::pair<long long, std::string>> largestLast;
  largestLast.reserve(kinds);
  for (const auto& [name, count] : counts) {
    largestLast.emplace_back(count, name);
  }
  std::sort(largestLast.begin(), largestLast.end());
  for (; recorded - ofBinnedKinds > static_cast<long long>(mostEvents); largestLast.pop_back()) {
    const auto& [count, name] = largestLast.back();
    binned[name].recorded = count;
    ofBinnedKinds += count;
  }
}

void KeptEvents::Choose(const Store::Reader& store, long long root) {
  for (RunEvents events(store, root); events.Next();) {
    const auto kind = binned.find(events.Current().name);
    if (kind != binned.end()) {
      Consider(kind->second, events.Current());
    }
  }
  KeepLastOfUnfinished(store, root);
  for (auto& [name, kind] : binned) {
    KeepNewest(kind);
    for (const auto& [values, slices] : kind.extremes) {
      for (const auto& [slice, extremes] : slices) {
        kept.push_back(extremes.lowestEvent);
        kept.push_back(extremes.highestEvent);
      }
    }
    kind.extremes.clear();
  }
  std::sort(kept.begin(), kept.end());
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
}

void KeptEvents::Consider(Kind& kind, const Event& event) {
  if (kind.execution != event.execution) {
    KeepNewest(kind);
  }
  kind.execution = event.execution;
  kind.newest[{"", 0}] = event.number;
  const long long at = event.at.value_or(first);
  const std::size_t slice = SliceOf(at);
  ++kind.inSlice[slice];
  ConsiderValue(kind.extremes[{{"", 0}, false}], slice, static_cast<double>(at), event.number);
  std::map<std::string_view, int> seen;
  for (const Reading& reading : event.readings) {
    Parameter parameter(reading.name, ++seen[reading.name]);
    kind.newest[parameter] = event.number;
    if (reading.number) {
      ConsiderValue(kind.extremes[{std::move(parameter), std::isinf(*reading.number)}], slice, *reading.number,
                    event.number);
    }
  }
  while (2 * extremesCount > mostEvents && sliceCount > 1) {
    HalveSlices();
  }
}

void KeptEvents::ConsiderValue(Slices& slices, std::size_t slice, double value, long long event) {
  const auto [place, isFirst] = slices.emplace(slice, Extremes{value, value, event, event});
  extremesCount += isFirst ? 1 : 0;
  place->second.Take({value, value, event, event});
}

void KeptEvents::HalveSlices() {
  sliceCount /= 2;
  extremesCount = 0;
  for (auto& [name, kind] : binned) {
    for (std::size_t slice = 0; slice < sliceCount; ++slice) {
      kind.inSlice[slice] = kind.inSlice[2 * slice] + kind.inSlice[2 * slice + 1];
    }
    kind.inSlice.resize(sliceCount);
    for (auto& [values, slices] : kind.extremes) {
      Slices halved;
      for (const auto& [slice, extremes] : slices) {
        halved.emplace(slice / 2, extremes).first->second.Take(extremes);
      }
      slices = std::move(halved);
      extremesCount += slices.size();
    }
  }
}

void KeptEvents::Extremes::Take(const Extremes& other) {
  if (other.lowest < lowest) {
    lowest = other.lowest, lowestEvent = other.lowestEvent;
  }
  if (other.highest > highest) {
    highest = other.highest, highestEvent = other.highestEvent;
  }
}

void KeptEvents::KeepNewest(Kind& kind) {
  for (const auto& [parameter, event] : kind.newest) {
    kept.push_back(event);
  }
  kind.newest.clear();
}

void KeptEvents::KeepLastOfUnfinished(const Store::Reader& store, long long root) {
  Rows executions(store, "SELECT x.execution_id" + UnfinishedExecutions(store) + " AND x.root_id = ?1");
  Rows events(store, "SELECT event_id, name FROM events WHERE execution_id = ?1 ORDER BY event_id DESC LIMIT " +
                         std::to_string(lastEvents));
  for (executions.Ask(root); executions.Next();) {
    for (events.Ask(executions.Integer(0)); events.Next();) {
      if (binned.count(std::string(events.Text(1))) > 0) {
        kept.push_back(events.Integer(0));
      }
    }
  }
}

std::size_t KeptEvents::SliceOf(long long at) const {
  const double share = static_cast<double>(at - first) / static_cast<double>(std::max(1LL, last - first));
  const auto slice = static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(sliceCount));
  return std::min(slice, sliceCount - 1);
}

}  // namespace Velora::Page

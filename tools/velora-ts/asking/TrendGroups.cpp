#include "asking/TrendGroups.h"

#include "store/reading/Rows.h"

#include <algorithm>
#include <limits>
#include <set>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Names of activity versions.
class VersionNames {
 public:
  struct Names {
    std::string version, activity, label;
  };

  explicit VersionNames(const Reader& store)
      : names(store,
              "SELECT w.name, w.version, a.name FROM activity_versions w CROSS JOIN activities a WHERE w.version_id = "
              "?1 AND a.activity_id = w.activity_id") {}

  const Names& Of(long long version) {
    const auto [place, isNew] = known.try_emplace(version);
    if (isNew && names.Ask(version).Next()) {
      const std::string number(names.Text(1));
      place->second.version = names.Text(0);
      place->second.activity = names.Text(2);
      place->second.label = place->second.version + (number.empty() ? "" : ' ' + number);
    }
    return place->second;
  }

 private:
  Rows names;
  std::map<long long, Names> known;
};

}  // namespace

std::vector<std::optional<std::string>> GroupsOf(const Reader& store, const std::vector<TrendSource>& sources,
                                                 const TrendQuestion& question, bool knowsAll) {
  Rows instrument(store, "SELECT instrument FROM sessions WHERE session_id = ?1");
  VersionNames versions(store);
  const auto isAsked = [&](long long version) {
    const VersionNames::Names& names = versions.Of(version);
    return names.version == question.window.activity || names.activity == question.window.activity;
  };
  std::vector<std::optional<std::string>> groups;
  for (const TrendSource& source : sources) {
    const std::string ofInstrument(instrument.Ask(source.instrument).Next() ? instrument.Text(0) : "");
    const bool isOther = (!question.window.instrument.empty() && ofInstrument != question.window.instrument) ||
                         (knowsAll && !question.window.activity.empty() &&
                          std::none_of(source.versions.begin(), source.versions.end(), isAsked));
    if (isOther) {
      groups.emplace_back(std::nullopt);
    } else if (question.by == "instrument") {
      groups.emplace_back(ofInstrument);
    } else {
      groups.emplace_back(
          question.by == "activity" && !source.versions.empty() ? versions.Of(source.versions.front()).label : "");
    }
  }
  return groups;
}

namespace {

/// Calls a function with each cell that has a group, and its beginning in microseconds.
template <typename Function>
void ForEachCell(const std::vector<TrendPart>& parts, const Function& call) {
  for (const TrendPart& part : parts) {
    for (const auto& [place, cell] : part.cells) {
      if (const auto& group = part.groups[static_cast<std::size_t>(place.second)]) {
        call(*group, place.first * part.width, cell, part.store);
      }
    }
  }
}

}  // namespace

TrendPicture::TrendPicture(const std::vector<TrendPart>& parts) {
  std::map<std::string, TrendGroup> all;
  long long first = std::numeric_limits<long long>::max(), last = std::numeric_limits<long long>::min();
  ForEachCell(parts, [&](const std::string& name, long long at, const TrendCell& cell, int /*store*/) {
    TrendGroup& group = all[name];
    group.count += cell.Count();
    group.others += cell.Others();
    first = std::min(first, at);
    last = std::max(last, at);
  });
  long long step = 1;
  for (const TrendPart& part : parts) {
    step = std::max(step, part.width);
  }
  for (width = step; !all.empty() && PartOf(last, width) - PartOf(first, width) >= mostBins;) {
    width += step;
  }
  std::vector<std::pair<std::size_t, std::string>> sizes;
  for (auto& [name, group] : all) {
    group.name = name;
    sizes.emplace_back(group.count, name);
  }
  std::sort(sizes.begin(), sizes.end(), std::greater<>());
  std::set<std::string> drawn;
  for (const auto& [count, name] : sizes) {
    if (drawn.size() < mostGroups) {
      drawn.insert(name);
    } else {
      ++together;
      rest.count += all[name].count;
      rest.others += all[name].others;
    }
  }
  ForEachCell(parts, [&](const std::string& name, long long at, const TrendCell& cell, int store) {
    TrendGroup& group = drawn.contains(name) ? all[name] : rest;
    group.bins[PartOf(at, width)].Take(cell, store);
  });
  for (const std::string& name : drawn) {
    groups.push_back(std::move(all[name]));
  }
}

}  // namespace Velora::Ts

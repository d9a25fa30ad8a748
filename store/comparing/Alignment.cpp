#include "store/comparing/Alignment.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>

namespace Velora::Store {

namespace {

using Places = std::vector<std::size_t>;

/// The places of a key in both sequences.
struct Both {
  Places first, second;
};
using Keys = std::unordered_map<std::size_t, Both>;

constexpr double noise = 0.02;  // values that differ by chance make ways differ by less
constexpr double dear = 1000;   // more than all distances on a way: as few items as possible stay alone

// Marks all matches as moved that are not in the longest series in which both places ascend.
void MarkMoved(std::vector<Match>& matches) {
  std::vector<std::size_t> ends;  // the match with the lowest second place at which a series of each length ends
  std::vector<std::size_t> before(matches.size());
  for (std::size_t at = 0; at < matches.size(); ++at) {
    const auto end = std::lower_bound(ends.begin(), ends.end(), at, [&](std::size_t one, std::size_t other) {
      return matches[one].second < matches[other].second;
    });
    before[at] = end == ends.begin() ? at : *(end - 1);
    matches[at].moved = true;
    if (end == ends.end()) {
      ends.push_back(at);
    } else {
      *end = at;
    }
  }
  for (std::size_t at = ends.empty() ? 0 : ends.back(), left = ends.size(); left > 0; --left, at = before[at]) {
    matches[at].moved = false;
  }
}

bool ByFirst(const Match& one, const Match& other) { return one.first < other.first; }

class Alignment {
 public:
  Alignment(const Places& first, const Places& second, const Distance& distance)
      : first(first), second(second), distance(distance), matchedSecond(second.size()), matchedFirst(first.size()) {
    for (std::size_t at = 0; at < first.size(); ++at) {
      keys[first[at]].first.push_back(at);
    }
    for (std::size_t at = 0; at < second.size(); ++at) {
      keys[second[at]].second.push_back(at);
    }
  }

  std::vector<Match> Find() {
    for (const auto& [key, both] : keys) {
      if (!IsWeighed(both)) {
        MatchInOrder(both);
      }
    }
    std::sort(matches.begin(), matches.end(), ByFirst);
    MarkMoved(matches);
    WeighGaps();
    for (const auto& [key, both] : keys) {
      MatchLeftOver(both);
    }
    std::sort(matches.begin(), matches.end(), ByFirst);
    MarkMoved(matches);
    return std::move(matches);
  }

 private:
  static bool IsWeighed(const Both& both) {
    return both.first.size() != both.second.size() && !both.first.empty() && !both.second.empty() &&
           std::max(both.first.size(), both.second.size()) <= mostWeighed;
  }

  void Add(const Match& match) {
    matches.push_back(match);
    matchedFirst[match.first] = true;
    matchedSecond[match.second] = true;
  }

  void MatchInOrder(const Both& both) {
    for (std::size_t at = 0; at < std::min(both.first.size(), both.second.size()); ++at) {
      Add({both.first[at], both.second[at]});
    }
  }

  // Between each two matches that are in order.
  void WeighGaps() {
    std::vector<Match> inOrder;
    std::copy_if(matches.begin(), matches.end(), std::back_inserter(inOrder),
                 [](const Match& match) { return !match.moved; });
    inOrder.push_back({first.size(), second.size()});
    std::size_t fromFirst = 0, fromSecond = 0;
    for (const Match& match : inOrder) {
      Weigh(WeighedIn(first, matchedFirst, fromFirst, match.first),
            WeighedIn(second, matchedSecond, fromSecond, match.second));
      fromFirst = match.first + 1;
      fromSecond = match.second + 1;
    }
  }

  Places WeighedIn(const Places& sequence, const std::vector<bool>& matched, std::size_t from, std::size_t to) const {
    Places places;
    for (std::size_t at = from; at < to; ++at) {
      if (!matched[at] && IsWeighed(keys.at(sequence[at]))) {
        places.push_back(at);
      }
    }
    return places;
  }

  void Weigh(const Places& ones, const Places& others) {
    if (std::max(ones.size(), others.size()) > mostWeighed) {
      return;
    }
    const auto cost = [&](std::size_t one, std::size_t other) {
      return first[ones[one]] == second[others[other]] ? std::optional(distance(ones[one], others[other]))
                                                       : std::nullopt;
    };
    const auto costOf = [&](const std::vector<Match>& way) {
      return std::accumulate(way.begin(), way.end(), 0.0, [&](double sum, const Match& match) {
        return sum + cost(match.first, match.second).value_or(dear);
      });
    };
    std::vector<Match> way = CheapestWay(ones.size(), others.size(), cost, dear, false);
    if (std::vector<Match> inOrder = InOrder(ones, others);
        inOrder.size() == way.size() && costOf(inOrder) < costOf(way) + noise) {
      way = std::move(inOrder);
    }
    for (const Match& match : way) {
      Add({ones[match.first], others[match.second]});
    }
  }

  // Matches the n-th of each key with the n-th; nothing if that is not in the order of both.
  std::vector<Match> InOrder(const Places& ones, const Places& others) const {
    Keys places;
    for (std::size_t other = 0; other < others.size(); ++other) {
      places[second[others[other]]].second.push_back(other);
    }
    std::vector<Match> way;
    for (std::size_t one = 0; one < ones.size(); ++one) {
      Both& both = places[first[ones[one]]];
      if (both.first.size() == both.second.size()) {
        continue;
      }
      const std::size_t other = both.second[both.first.size()];
      if (!way.empty() && other < way.back().second) {
        return {};
      }
      both.first.push_back(one);
      way.push_back({one, other});
    }
    return way;
  }

  // Items of the same key that stand in different gaps.
  void MatchLeftOver(const Both& both) {
    std::size_t other = 0;
    for (const std::size_t one : both.first) {
      for (; other < both.second.size() && matchedSecond[both.second[other]]; ++other) {
      }
      if (!matchedFirst[one] && other < both.second.size()) {
        Add({one, both.second[other]});
      }
    }
  }

  const Places &first, &second;
  const Distance& distance;
  Keys keys;
  std::vector<Match> matches;
  std::vector<bool> matchedSecond, matchedFirst;
};

enum class Step : char { Both, First, Second };

struct Way {
  double cost = std::numeric_limits<double>::infinity();
  Step last = Step::Both;
};

}  // namespace

std::vector<Match> Align(const std::vector<std::size_t>& first, const std::vector<std::size_t>& second,
                         const Distance& distance) {
  return Alignment(first, second, distance).Find();
}

std::vector<Match> CheapestWay(std::size_t first, std::size_t second,
                               const std::function<std::optional<double>(std::size_t, std::size_t)>& cost, double alone,
                               bool open) {
  const std::size_t width = second + 1;
  std::vector<Way> ways((first + 1) * width);
  ways[0].cost = 0;
  std::size_t end = 0;
  for (std::size_t at = 0; at < ways.size(); ++at) {
    const std::size_t one = at / width, other = at % width;
    const auto consider = [&](std::size_t from, double more, Step step) {
      if (ways[from].cost + more < ways[at].cost) {
        ways[at] = {ways[from].cost + more, step};
      }
    };
    if (one > 0 && other > 0) {
      if (const std::optional<double> match = cost(one - 1, other - 1)) {
        consider(at - width - 1, *match, Step::Both);
      }
    }
    if (one > 0) {
      consider(at - width, alone, Step::First);
    }
    if (other > 0) {
      consider(at - 1, alone, Step::Second);
    }
    const bool isEnd = one == first || other == second;
    if (isEnd && (!open || end == 0 || ways[at].cost < ways[end].cost)) {
      end = at;
    }
  }
  std::vector<Match> matches;
  while (end > 0) {
    const std::size_t one = end / width, other = end % width;
    if (ways[end].last == Step::Both) {
      matches.push_back({one - 1, other - 1});
    }
    end -= ways[end].last == Step::Both ? width + 1 : ways[end].last == Step::First ? width : 1;
  }
  std::reverse(matches.begin(), matches.end());
  return matches;
}

}  // namespace Velora::Store

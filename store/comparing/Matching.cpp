#include "store/comparing/Matching.h"

#include "store/comparing/Alignment.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

namespace Velora::Store {

namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// A node in which each number is replaced by '#', and these numbers.
struct Pattern {
  std::string text;
  std::vector<std::string> numbers;
};

Pattern PatternOf(const std::string& node) {
  Pattern pattern;
  for (std::size_t at = 0; at < node.size(); ++at) {
    if (!IsDigit(node[at])) {
      pattern.text += node[at];
    } else if (at == 0 || !IsDigit(node[at - 1])) {
      pattern.text += '#';
      pattern.numbers.emplace_back(1, node[at]);
    } else {
      pattern.numbers.back() += node[at];
    }
  }
  return pattern;
}

using Names = std::vector<std::string>;

bool HaveOneInCommon(const Names& ones, const Names& others) {
  const std::set<std::string> known(ones.begin(), ones.end());
  return std::any_of(others.begin(), others.end(), [&](const std::string& name) { return known.count(name) > 0; });
}

/// The numbers that stand in one place of the nodes with a pattern, in both runs.
using Numbers = std::map<std::pair<std::string, std::size_t>, std::array<std::set<std::string>, 2>>;

void Collect(Numbers& numbers, const Names& nodes, std::size_t run) {
  for (const std::string& node : nodes) {
    const Pattern pattern = PatternOf(node);
    for (std::size_t at = 0; at < pattern.numbers.size(); ++at) {
      numbers[{pattern.text, at}].at(run).insert(pattern.numbers[at]);
    }
  }
}

std::string WithoutNumbersOfOneSide(const std::string& node, const Numbers& numbers) {
  const Pattern pattern = PatternOf(node);
  std::string name = pattern.text;
  for (std::size_t at = 0; at < pattern.numbers.size(); ++at) {
    const auto& sides = numbers.at({pattern.text, at});
    const bool common = std::any_of(sides[0].begin(), sides[0].end(),
                                    [&](const std::string& number) { return sides[1].count(number) > 0; });
    name += common ? '/' + pattern.numbers[at] : "/";
  }
  return name;
}

// Replaces nodes of one activity by names that are on both sides, if that can be done.
void FindNames(Names& ones, Names& others) {
  if (HaveOneInCommon(ones, others)) {
    return;
  }
  Numbers numbers;
  Collect(numbers, ones, 0);
  Collect(numbers, others, 1);
  const auto replace = [&](const auto& name) {
    Names first, second;
    std::transform(ones.begin(), ones.end(), std::back_inserter(first), name);
    std::transform(others.begin(), others.end(), std::back_inserter(second), name);
    const bool common = HaveOneInCommon(first, second);
    if (common) {
      ones = std::move(first);
      others = std::move(second);
    }
    return common;
  };
  if (!replace([&](const std::string& node) { return WithoutNumbersOfOneSide(node, numbers); }) &&
      !replace([](const std::string& node) { return PatternOf(node).text; })) {
    replace([](const std::string&) { return std::string(); });
  }
}

/// The siblings of one activity on both sides, by their places among all siblings.
struct OfActivity {
  std::array<std::vector<std::size_t>, 2> places;
  std::array<Names, 2> names;
};

class Matcher {
 public:
  Matcher(const RunTree& first, const RunTree& second, const ExecutionDistance& distance)
      : trees{&first, &second}, distance(distance) {
    matching.ofFirst.assign(first.Size(), Matching::none);
    matching.ofSecond.assign(second.Size(), Matching::none);
    matching.moved.assign(first.Size(), false);
  }

  Matching Find() {
    Add(trees[0]->Root(), trees[1]->Root(), false);
    while (!left.empty()) {
      const auto [first, second] = left.back();
      left.pop_back();
      MatchBelow(first, second);
    }
    return std::move(matching);
  }

 private:
  void Add(std::size_t first, std::size_t second, bool moved) {
    matching.ofFirst[first] = second;
    matching.ofSecond[second] = first;
    matching.moved[first] = moved;
    left.emplace_back(first, second);
  }

  void MatchBelow(std::size_t first, std::size_t second) {
    const std::array siblings{trees[0]->ChildrenOf(first), trees[1]->ChildrenOf(second)};
    const auto keys = KeysOf(siblings);
    const auto between = [&](std::size_t one, std::size_t other) {
      return distance(siblings[0][one], siblings[1][other]);
    };
    for (const auto& [one, other, moved] : Align(keys[0], keys[1], between)) {
      Add(siblings[0][one], siblings[1][other], moved);
    }
  }

  std::array<std::vector<std::size_t>, 2> KeysOf(const std::array<std::span<const std::size_t>, 2>& siblings) const {
    std::map<std::string, OfActivity> activities;
    std::array<std::vector<std::size_t>, 2> keys;
    for (std::size_t run = 0; run < 2; ++run) {
      keys.at(run).resize(siblings.at(run).size());
      for (std::size_t place = 0; place < siblings.at(run).size(); ++place) {
        const std::size_t execution = siblings.at(run)[place];
        OfActivity& one = activities[trees.at(run)->ActivityOf(execution).name];
        one.places.at(run).push_back(place);
        one.names.at(run).push_back(trees.at(run)->At(execution).node);
      }
    }
    std::map<std::pair<std::string, std::string>, std::size_t> known;
    for (auto& [activity, one] : activities) {
      FindNames(one.names[0], one.names[1]);
      for (std::size_t run = 0; run < 2; ++run) {
        for (std::size_t at = 0; at < one.places.at(run).size(); ++at) {
          const auto key = known.try_emplace({activity, one.names.at(run)[at]}, known.size()).first;
          keys.at(run)[one.places.at(run)[at]] = key->second;
        }
      }
    }
    return keys;
  }

  const std::array<const RunTree*, 2> trees;
  const ExecutionDistance& distance;
  Matching matching;
  std::vector<std::pair<std::size_t, std::size_t>> left;  // matched executions whose children are not yet
};

}  // namespace

Matching MatchExecutions(const RunTree& first, const RunTree& second, const ExecutionDistance& distance) {
  return Matcher(first, second, distance).Find();
}

}  // namespace Velora::Store

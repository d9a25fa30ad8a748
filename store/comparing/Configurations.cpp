#include "store/comparing/Configurations.h"

#include "store/comparing/Alignment.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/RecordedText.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace Velora::Store {

namespace {

enum Column { Key, SavedAt, Text, FirstFact };

constexpr const char* question =
    "SELECT c.configuration_id, c.saved_at, c.configuration_text, c.vendor_name, c.model_name, c.instrument_class, "
    "c.option_text, c.host_name FROM configurations c WHERE c.configuration_id IN (SELECT v.configuration_id "
    "FROM executions x JOIN events v ON v.execution_id = x.execution_id WHERE x.root_id = ?1) "
    "ORDER BY c.configuration_id";

std::vector<std::string> LinesOf(const Configuration& configuration) {
  std::vector<std::string> lines = configuration.facts;
  const std::string text = Readable(configuration.text);
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    lines.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return lines;
}

std::vector<std::size_t> KeysOf(const std::vector<std::string>& lines, std::map<std::string_view, std::size_t>& known) {
  std::vector<std::size_t> keys;
  keys.reserve(lines.size());
  for (const std::string& line : lines) {
    keys.push_back(known.try_emplace(line, known.size()).first->second);
  }
  return keys;
}

}  // namespace

std::vector<Configuration> ConfigurationsOf(const Reader& store, const Run& run) {
  std::vector<Configuration> configurations;
  Rows rows(store, question);
  for (rows.Ask(run.root); rows.Next();) {
    Configuration one{rows.Integer(Key), std::string(rows.Text(SavedAt)), {}, std::string(rows.Text(Text))};
    for (int column = FirstFact; column < rows.Columns(); ++column) {
      one.facts.push_back(std::string(rows.Name(column)) + ": " + Readable(rows.Text(column)));
    }
    if (configurations.empty() || configurations.back().text != one.text || configurations.back().facts != one.facts) {
      configurations.push_back(std::move(one));
    }
  }
  return configurations;
}

std::vector<ChangedLine> ChangedLines(const Configuration& first, const Configuration& second) {
  if (first.text == second.text && first.facts == second.facts) {
    return {};
  }
  const std::vector<std::string> ones = LinesOf(first), others = LinesOf(second);
  std::map<std::string_view, std::size_t> known;
  const std::vector<std::size_t> keys = KeysOf(ones, known), otherKeys = KeysOf(others, known);
  std::vector<Match> matches = Align(keys, otherKeys, [](std::size_t, std::size_t) { return 0.0; });
  matches.push_back({ones.size(), others.size()});
  std::vector<ChangedLine> changed;
  std::size_t one = 0, other = 0;
  const auto numberOf = [](std::size_t place, const Configuration& configuration) {
    return place < configuration.facts.size() ? 0 : place - configuration.facts.size() + 1;
  };
  for (const auto& [ofFirst, ofSecond, moved] : matches) {
    if (moved) {
      continue;  // is a line that went away and one that came
    }
    for (; one < ofFirst; ++one) {
      changed.push_back({numberOf(one, first), std::nullopt, ones[one]});
    }
    for (; other < ofSecond; ++other) {
      changed.push_back({std::nullopt, numberOf(other, second), others[other]});
    }
    one = ofFirst + 1;
    other = ofSecond + 1;
  }
  return changed;
}

void ForEachChangedLine(const std::vector<Configuration>& first, const std::vector<Configuration>& second,
                        const std::function<void(const ChangedLine&)>& visit) {
  if (first.empty() || second.empty()) {
    return;
  }
  for (std::size_t at = 0; at < std::max(first.size(), second.size()); ++at) {
    for (const ChangedLine& line :
         ChangedLines(first[std::min(at, first.size() - 1)], second[std::min(at, second.size() - 1)])) {
      visit(line);
    }
  }
}

}  // namespace Velora::Store

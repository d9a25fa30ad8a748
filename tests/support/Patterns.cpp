#include "support/Patterns.h"

#include <regex>

bool Matches(const std::string& text, const std::string& pattern) {
  return std::regex_match(text, std::regex(pattern));
}

bool HasMatch(const std::string& text, const std::string& pattern) {
  return std::regex_search(text, std::regex(pattern));
}

std::string ReplaceMatches(const std::string& text, const std::string& pattern, const std::string& by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

std::vector<std::vector<std::string>> MatchesIn(const std::string& text, const std::string& pattern) {
  const std::regex described(pattern);
  std::vector<std::vector<std::string>> matches;
  for (std::sregex_iterator at(text.begin(), text.end(), described), end; at != end; ++at) {
    matches.emplace_back(at->begin(), at->end());
  }
  return matches;
}

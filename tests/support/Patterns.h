#pragma once

#include <string>
#include <vector>

// Regular expressions of tests. One file compiles them for all tests, because each file that uses <regex> takes two
// seconds more.

/// Whether a pattern describes a whole text.
bool Matches(const std::string& text, const std::string& pattern);
/// Whether it describes a part of the text.
bool HasMatch(const std::string& text, const std::string& pattern);
/// A text with others in place of the parts that a pattern describes; $1 in them is the first group of the part.
std::string ReplaceMatches(const std::string& text, const std::string& pattern, const std::string& by);
/// The parts of a text that a pattern describes, each with the texts of its groups behind it.
std::vector<std::vector<std::string>> MatchesIn(const std::string& text, const std::string& pattern);

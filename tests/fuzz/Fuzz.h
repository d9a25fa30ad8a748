#pragma once

#include "support/ScratchFolder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

/// Ends the run with what does not hold; the fuzzer keeps the input.
inline void Require(bool holds, const std::string& claim) {
  if (!holds) {
    std::cerr << "Does not hold: " << claim << std::endl;
    std::abort();
  }
}

/// A file with this content in a folder that lasts as long as the run; readers take paths.
inline std::string InputFile(const std::string& name, const std::string& content) {
  static const ScratchFolder folder;
  return folder.Write(name, content).string();
}

inline std::size_t LinesOf(const std::string& content) {
  return 1 + static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
}

/// The number that stands in an error's text behind a lead such as "file 'a', line ".
inline std::size_t LineIn(const std::string& error, const std::string& lead) {
  Require(error.compare(0, lead.size(), lead) == 0, "an error says which file and line: " + error);
  return std::strtoull(error.c_str() + lead.size(), nullptr, 10);
}

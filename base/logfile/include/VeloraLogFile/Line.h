#pragma once

#include <cstddef>
#include <string>

namespace Velora::LogFile {

enum class Level { Info, Warning, Error };

/// "info", "warning" or "error".
const char* InWords(Level level);

/// What a log says at a time: a line, and the lines after it that have no time of their own.
struct Line {
  /// The most bytes of a text. Of a longer one it is the beginning, and an ellipsis.
  static constexpr std::size_t longestText = 4096;

  long long at = 0;  ///< Microseconds since 1970, UTC.
  Level level = Level::Info;
  std::string source;
  std::string text;
};

}  // namespace Velora::LogFile

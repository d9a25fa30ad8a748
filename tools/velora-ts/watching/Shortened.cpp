#include "watching/Shortened.h"

#include <VeloraText/Character.h>

#include <algorithm>

namespace Velora::Ts {

std::string Shortened(std::string_view stored) {
  if (stored.starts_with("\\x")) {
    return std::string(stored.substr(0, 2 + 2 * longestTextNow));
  }
  std::size_t end = 0;
  std::size_t beforeLast = 0;
  for (std::size_t characters = 0; end < stored.size(); ++characters) {
    if (characters == longestTextNow) {
      return std::string(stored.substr(0, beforeLast)) + "\u2026";
    }
    beforeLast = end;
    end += std::max<std::size_t>(Text::SequenceLength(stored.substr(end)), 1);
  }
  return std::string(stored);
}

}  // namespace Velora::Ts

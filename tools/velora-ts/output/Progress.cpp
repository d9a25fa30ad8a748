#include "output/Progress.h"

#include <VeloraSystem/Console.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace Velora::Ts {

Progress::Progress(std::string doing, long long total)
    : terminal(System::TakesEscapes(System::Standard::Error)), doing(std::move(doing)), total(total) {}

Progress::~Progress() {
  if (shown) {
    std::cerr << "\r\x1b[K" << std::flush;
  }
}

void Progress::Show(long long now) {
  done = now;
  if (!terminal || std::chrono::steady_clock::now() < next) {
    return;
  }
  next = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
  shown = true;
  std::cerr << '\r' << doing << ": " << done;
  if (total > 0) {
    std::cerr << " of " << total << ", " << std::min(100LL, 100 * done / total) << " %";
  }
  std::cerr << "\x1b[K" << std::flush;
}

}  // namespace Velora::Ts

#include "ProgressBar.h"

#include <VeloraSystem/Console.h>
#include <VeloraText/Printable.h>

#include <algorithm>
#include <iostream>

namespace {

constexpr std::size_t barWidth = 30;
constexpr std::size_t labelWidth = 40;
constexpr std::chrono::milliseconds betweenDrawings{100};

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total)
    : terminal(Velora::System::TakesEscapes(Velora::System::Standard::Error)), total(total) {}

void ProgressBar::Show(std::uint64_t done, const std::string& label) {
  const auto now = std::chrono::steady_clock::now();
  if (!terminal || now < nextDrawing) {
    return;
  }
  nextDrawing = now + betweenDrawings;
  const double share = total == 0 ? 0.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
  const auto filled = static_cast<std::size_t>(share * static_cast<double>(barWidth));
  std::cerr << "\r[" << std::string(filled, '#') << std::string(barWidth - filled, ' ') << "] "
            << static_cast<int>(share * 100) << " % " << Velora::Text::Printable(label.substr(0, labelWidth))
            << "\x1b[K" << std::flush;
}

void ProgressBar::Clear() {
  if (terminal) {
    std::cerr << "\r\x1b[K" << std::flush;
  }
}

#include <VeloraSystem/Console.h>

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace Velora::System {

bool IsTerminal(Standard stream) { return isatty(stream == Standard::Output ? STDOUT_FILENO : STDERR_FILENO) != 0; }

bool TakesEscapes(Standard stream) {
  const char* const kind = std::getenv("TERM");
  return IsTerminal(stream) && kind != nullptr && std::string_view(kind) != "dumb";
}

std::optional<std::size_t> TerminalWidth() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? std::optional<std::size_t>(size.ws_col)
                                                                         : std::nullopt;
}

std::vector<std::string> Arguments(int argc, const char* const* argv) { return {argv, argv + argc}; }

struct StandardStreams::Replaced {};
StandardStreams::StandardStreams() = default;
StandardStreams::~StandardStreams() = default;

}  // namespace Velora::System

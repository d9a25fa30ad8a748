#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What a program and the person at its terminal exchange. On Windows a terminal is a console.

namespace Velora::System {

enum class Standard { Output, Error };

/// Whether what is written to a standard stream appears on a terminal.
bool IsTerminal(Standard stream);
/// Whether it appears on a terminal that takes escape sequences, as colours are. A console begins to take them here, if
/// it can.
bool TakesEscapes(Standard stream);
/// How many columns of a line of the terminal at standard output can be filled; nothing if the system does not tell it.
std::optional<std::size_t> TerminalWidth();

/// The arguments of this process in UTF-8, with the name of the program as the first. They are those of main(), unless
/// the system has them in a better form.
std::vector<std::string> Arguments(int argc, const char* const* argv);

/// While it exists, std::cout and std::cerr write a UTF-8 text to a console whatever the code page of that is, and to a
/// file or a pipe the bytes as they are. If nobody reads a pipe any more, and at Ctrl-C, the process ends at once,
/// without a word and with the exit code that a shell on Linux reports then. On Linux all this is so without it.
class StandardStreams {
 public:
  StandardStreams();
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;
  ~StandardStreams();

 private:
  struct Replaced;
  const std::unique_ptr<Replaced> replaced;
};

}  // namespace Velora::System

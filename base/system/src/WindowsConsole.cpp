#include "WindowsText.h"

#include <VeloraSystem/Console.h>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <streambuf>
#include <string_view>

namespace Velora::System {
namespace {

HANDLE HandleOf(Standard stream) {
  return GetStdHandle(stream == Standard::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

std::optional<DWORD> ConsoleMode(Standard stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0 ? std::optional(mode) : std::nullopt;
}

/// The exit code that a shell on Linux reports for a process that a signal ended.
constexpr int EndedBy(int signal) { return 128 + signal; }

BOOL WINAPI EndAtControlC(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
    return FALSE;
  }
  ExitProcess(EndedBy(SIGINT));
}

bool IsPipeThatNobodyReads(unsigned long reason) {
  return reason == ERROR_BROKEN_PIPE || reason == ERROR_NO_DATA || reason == ERROR_PIPE_NOT_CONNECTED;
}

/// Where the last character of a text begins if it is cut off; else the end of the text.
std::size_t EndOfWholeCharacters(std::string_view text) {
  for (std::size_t last = 1; last <= std::min<std::size_t>(text.size(), 3); ++last) {
    const auto byte = static_cast<unsigned char>(text[text.size() - last]);
    if (byte >= 0xC0) {
      const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
      return length > last ? text.size() - last : text.size();
    }
    if (byte < 0x80) {
      break;
    }
  }
  return text.size();
}

/// Takes the place of what a stream writes to.
class Buffer : public std::streambuf {
 public:
  Buffer(std::ostream& stream, Standard standard)
      : stream(stream), standard(standard), console(ConsoleMode(standard)), former(stream.rdbuf(this)) {
    setp(bytes.data(), bytes.data() + bytes.size());
    _setmode(Descriptor(), _O_BINARY);
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() override {
    sync();
    stream.rdbuf(former);
    if (console) {
      SetConsoleMode(HandleOf(standard), *console);
    }
  }

 protected:
  int_type overflow(int_type next) override {
    if (sync() != 0) {
      return traits_type::eof();
    }
    return traits_type::eq_int_type(next, traits_type::eof()) ? traits_type::not_eof(next)
                                                              : sputc(traits_type::to_char_type(next));
  }

  int sync() override {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    const std::size_t whole = console ? EndOfWholeCharacters(text) : text.size();
    const bool written = console ? WriteToConsole(text.substr(0, whole)) : WriteBytes(text);
    const std::string_view rest = text.substr(whole);
    std::copy(rest.begin(), rest.end(), bytes.begin());
    setp(bytes.data(), bytes.data() + bytes.size());
    pbump(static_cast<int>(rest.size()));
    return written ? 0 : -1;
  }

 private:
  int Descriptor() const { return standard == Standard::Output ? 1 : 2; }

  // Unlike a change of the console's code page, this needs no way back when the process is killed.
  bool WriteToConsole(std::string_view text) const {
    const std::wstring wide = Wide(text);
    for (std::size_t done = 0; done < wide.size();) {
      DWORD more = 0;
      if (WriteConsoleW(HandleOf(standard), wide.data() + done, static_cast<DWORD>(wide.size() - done), &more,
                        nullptr) == 0) {
        errno = EIO;
        return false;
      }
      done += more;
    }
    return true;
  }

  bool WriteBytes(std::string_view text) const {
    while (!text.empty()) {
      const int more = _write(Descriptor(), text.data(), static_cast<unsigned>(text.size()));
      if (more < 0 && IsPipeThatNobodyReads(_doserrno)) {
        constexpr int sigpipe = 13;
        _exit(EndedBy(sigpipe));
      }
      if (more < 0) {
        return false;
      }
      text.remove_prefix(static_cast<std::size_t>(more));
    }
    return true;
  }

  std::ostream& stream;
  const Standard standard;
  const std::optional<DWORD> console;  // how it was; nothing if it is none
  std::streambuf* const former;
  std::array<char, 8192> bytes{};
};

}  // namespace

bool IsTerminal(Standard stream) { return ConsoleMode(stream).has_value(); }

bool TakesEscapes(Standard stream) {
  const std::optional<DWORD> mode = ConsoleMode(stream);
  return mode && SetConsoleMode(HandleOf(stream), *mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::optional<std::size_t> TerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(HandleOf(Standard::Output), &info) == 0 || info.srWindow.Right <= info.srWindow.Left) {
    return std::nullopt;
  }
  return info.srWindow.Right - info.srWindow.Left;  // one less than it has: after a full line there is an empty one
}

std::vector<std::string> Arguments(int argc, const char* const* argv) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) {
    return {argv, argv + argc};
  }
  std::vector<std::string> arguments;
  std::transform(wide, wide + count, std::back_inserter(arguments), Utf8);
  LocalFree(wide);
  return arguments;
}

struct StandardStreams::Replaced {
  Buffer output{std::cout, Standard::Output};
  Buffer error{std::cerr, Standard::Error};
};
StandardStreams::StandardStreams() : replaced(std::make_unique<Replaced>()) {
  SetConsoleCtrlHandler(&EndAtControlC, TRUE);
}
StandardStreams::~StandardStreams() = default;

}  // namespace Velora::System

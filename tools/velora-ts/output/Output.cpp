#include "output/Output.h"

#include "output/Terminal.h"

#include "store/Error.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

namespace {

[[noreturn]] void Fail() {
  throw Store::Error("the output cannot be written: " + std::system_category().message(errno));
}

}  // namespace

void Say(std::string_view line) { WriteOut(Printable(line) + '\n'); }

void Complain(std::string_view line) { Velora::Text::WriteLine(std::cerr, line); }

void WriteOut(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    Fail();
  }
}

void WriteData(std::string_view text) {
  static const bool terminal = isatty(STDOUT_FILENO) != 0;
  while (terminal && !text.empty()) {
    const std::size_t line = std::min(text.find('\n'), text.size());
    WriteOut(Printable(text.substr(0, line)));
    WriteOut(text.substr(line, 1));
    text.remove_prefix(std::min(line + 1, text.size()));
  }
  WriteOut(text);
}

void FlushOut() {
  if (std::fflush(stdout) != 0) {
    Fail();
  }
}

}  // namespace Velora::Ts

#include "output/Output.h"

#include "output/Terminal.h"

#include "store/Error.h"

#include <VeloraSystem/Console.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

namespace {

[[noreturn]] void Fail() {
  throw Store::Error("the output cannot be written: " + std::generic_category().message(errno));
}

}  // namespace

void Say(std::string_view line) { WriteOut(Printable(line) + '\n'); }

void SayEach(const std::string& beginning, const std::vector<std::string>& words) {
  for (const std::string& end : words) {
    Say(std::string(beginning).append(end));
  }
}

void Complain(std::string_view line) { Velora::Text::WriteLine(std::cerr, line); }

void WriteOut(std::string_view text) {
  if (!std::cout.write(text.data(), static_cast<std::streamsize>(text.size()))) {
    Fail();
  }
}

void WriteData(std::string_view text) {
  static const bool terminal = System::IsTerminal(System::Standard::Output);
  while (terminal && !text.empty()) {
    const std::size_t line = std::min(text.find('\n'), text.size());
    WriteOut(Printable(text.substr(0, line)));
    WriteOut(text.substr(line, 1));
    text.remove_prefix(std::min(line + 1, text.size()));
  }
  WriteOut(text);
}

void FlushOut() {
  if (!std::cout.flush()) {
    Fail();
  }
}

}  // namespace Velora::Ts

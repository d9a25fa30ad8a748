#include "Output.h"

#include <TSAL/Error.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace {

[[noreturn]] void Fail() {
  throw Quor::TolvaServices::TsError("the output cannot be written: " + std::system_category().message(errno));
}

}  // namespace

void WriteOut(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    Fail();
  }
}

void FlushOut() {
  if (std::fflush(stdout) != 0) {
    Fail();
  }
}

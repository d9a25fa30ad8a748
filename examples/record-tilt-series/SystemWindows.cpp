#include "System.h"

#include <io.h>

#include <cstdio>
#include <cstdlib>

bool IsTerminalOnStandardError() { return _isatty(_fileno(stderr)) != 0; }
void SetUnlessSet(const char* variable, const std::string& value) {
  if (std::getenv(variable) == nullptr) {
    _putenv_s(variable, value.c_str());
  }
}

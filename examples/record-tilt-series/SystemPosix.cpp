#include "System.h"

#include <unistd.h>

#include <cstdlib>

bool IsTerminalOnStandardError() { return isatty(STDERR_FILENO) != 0; }
void SetUnlessSet(const char* variable, const std::string& value) { setenv(variable, value.c_str(), 0); }

#pragma once

#include <string>

// Functions that have different names on different systems.

bool IsTerminalOnStandardError();
/// Sets an environment variable that has no value yet.
void SetUnlessSet(const char* variable, const std::string& value);

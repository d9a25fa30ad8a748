#pragma once

#include <string>

// What the systems call by different names.

bool IsTerminalOnStandardError();
/// Sets an environment variable that has no value yet.
void SetUnlessSet(const char* variable, const std::string& value);

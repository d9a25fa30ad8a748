#pragma once

#include <optional>
#include <string>
#include <vector>

// Functions that have different names on different systems.

/// Sets an environment variable that has no value yet.
void SetUnlessSet(const char* variable, const std::string& value);
/// What a program writes to standard output; nothing if it cannot be started or ends with another exit code than 0.
/// What it writes to standard error is dropped.
/// @param command the file of the program and its arguments.
std::optional<std::string> OutputOf(const std::vector<std::string>& command);

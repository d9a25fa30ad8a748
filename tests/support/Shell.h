#pragma once

#include "support/ScratchFolder.h"

#include <sys/wait.h>

#include <cstdlib>
#include <string>

/// Runs a command in a folder. @param said what it says, on both streams.
inline int RunIn(const ScratchFolder& folder, const std::string& command, std::string& said) {
  const std::string line = "cd '" + folder.path.string() + "' && { " + command + "\n} > said 2>&1";
  const int status = std::system(line.c_str());
  said = ContentOf(folder / "said");
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

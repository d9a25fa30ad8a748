#pragma once

#include "support/ScratchFolder.h"

#include <sys/wait.h>

#include <cstdlib>
#include <string>

/// A fixture whose tests run commands in its folder.
template <typename Fixture>
class WithShell : public Fixture {
 protected:
  /// Runs a command in the folder; what it says, on both streams, is in `said` afterwards. @return its exit code.
  int Shell(const std::string& command) {
    const std::string line = "cd '" + this->folder.path.string() + "' && { " + command + "\n} > said 2>&1";
    const int status = std::system(line.c_str());
    said = ContentOf(this->folder / "said");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  bool Says(const std::string& words) const { return said.find(words) != std::string::npos; }

  std::string said;
};

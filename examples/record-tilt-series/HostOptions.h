#pragma once

#include <VeloraCommandLine/Program.h>

#include <optional>
#include <string>
#include <vector>

/// The command line options of both example hosts.
struct HostOptions {
  /// @param description what the host does.
  explicit HostOptions(const std::string& description);

  /// Reads the command line and makes the files' names absolute.
  /// @return the exit code if the program must end now.
  std::optional<int> Read(int argc, char** argv);

  /// The files as C strings, which are valid as long as this object.
  std::vector<const char*> Files() const;

  Velora::CommandLine::Program program;  ///< For options of the host alone.
  std::string data = ".";
  std::vector<std::string> files;
  long long pace = 0;
};

#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

/// The command line options of both example hosts.
struct HostOptions {
  explicit HostOptions(CLI::App& app);

  /// Reads the command line and makes the files' names absolute.
  /// @return the exit code if the program must end now.
  std::optional<int> Parse(CLI::App& app, int argc, char** argv);

  /// The files as C strings, which are valid as long as this object.
  std::vector<const char*> Files() const;

  std::string data = ".";
  std::vector<std::string> files;
};

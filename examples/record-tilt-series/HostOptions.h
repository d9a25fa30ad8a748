#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

/// What both example hosts take on their command lines.
struct HostOptions {
  explicit HostOptions(CLI::App& app);

  /// Reads the command line and makes the files' names absolute.
  /// @return the exit code, where there is nothing more to do.
  std::optional<int> Parse(CLI::App& app, int argc, char** argv);

  /// The files as C texts, valid while this object is.
  std::vector<const char*> Files() const;

  std::string data = ".";
  std::vector<std::string> files;
};

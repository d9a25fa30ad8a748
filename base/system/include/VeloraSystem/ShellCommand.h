#pragma once

#include <VeloraSystem/Failure.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Velora::System {

/// A command of the system's shell that runs beside this process: sh, or cmd.exe on Windows. It reads nothing, and what
/// it writes goes to the standard error of this process. Ctrl-C at the terminal of this process does not reach it.
class ShellCommand {
 public:
  /// Begins the command.
  /// @param variables of its environment, beside those of this process. Their values must have no zero byte. On Windows
  /// a sign by which cmd.exe parts and expands commands becomes "_" in them: it would find it in what it expands.
  /// @throws Failure
  ShellCommand(const std::string& command, const std::map<std::string, std::string>& variables);
  ShellCommand(const ShellCommand&) = delete;
  ShellCommand& operator=(const ShellCommand&) = delete;
  /// Kills the command if it still runs.
  ~ShellCommand();

  /// Its exit code once it has ended; 128 and the number of the signal if one has ended it. It does not wait.
  std::optional<int> Result();
  /// Ends it at once, with the programs that it has begun.
  void Kill();

 private:
  struct Process;
  const std::unique_ptr<Process> process;
};

}  // namespace Velora::System

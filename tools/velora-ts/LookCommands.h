#pragma once

#include "verbs/Verbs.h"

#include <functional>

namespace CLI {
class App;
}

namespace Velora::Ts {

/// The command lines of the verbs that show what was recorded.
class LookCommands {
 public:
  using Adder = std::function<CLI::App*(const std::string& verb, const std::string& does, const std::string& example)>;
  using Opener = std::function<Quor::TolvaServices::Local::Database()>;

  /// @param add makes the command line of a verb.
  /// @param result what the verb answered.
  LookCommands(const Adder& add, const Opener& database, ExitCode& result);
  LookCommands(const LookCommands&) = delete;
  LookCommands& operator=(const LookCommands&) = delete;
  ~LookCommands() = default;

 private:
  void AddRuns(CLI::App& verb);
  void AddShow(CLI::App& verb);
  void AddTail(CLI::App& verb);

  const Opener database;
  ExitCode& result;
  RunFilter filter;
  ShowOptions options;
  std::string run;
};

/// The beginning of a time as the store has it; how it compares with one does not depend on how much of it is given.
/// @throws CLI::ValidationError
std::string TimeOf(const std::string& text);

}  // namespace Velora::Ts

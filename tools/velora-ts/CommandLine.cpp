#include "CommandLine.h"

#include "RegisteredVerbs.h"
#include "output/Output.h"
#include "store/database/DatabaseError.h"

#include <VeloraCommandLine/Program.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

namespace {

constexpr const char* footer =
    "Exit code: 0 success, 1 the store has a fault or does not contain what was asked for, or two runs differ, 2 wrong "
    "usage, 3 the store could not be read or written, 4 what is sealed was not changed, but not everything is "
    "sealed.\n\"velora-ts help VERB\" has an example for each verb; "
    "\"man velora-ts\" says more.";

/// The program with its verbs.
struct DeclaredVerbs {
  CommandLine::Program program{"Shows, checks, copies and verifies the store of a local TS.", footer, "velora-ts"};
  std::map<std::string, std::unique_ptr<Verb>> verbs;

  DeclaredVerbs() {
    program.AddVersion("velora-ts " VELORA_VERSION);
    for (const Registration* const verb : registeredVerbs) {
      Options options = program.AddVerb(verb->name, verb->help, verb->example);
      verbs.emplace(verb->name, verb->make(options));
    }
  }
};

}  // namespace

ExitCode RunCommandLine(const std::vector<std::string>& arguments) {
  DeclaredVerbs declared;
  try {
    if (const std::optional<bool> helped = declared.program.Read(arguments)) {
      return *helped ? Done : WrongUsage;
    }
    const ExitCode result = declared.verbs.at(declared.program.Verb())->Execute();
    FlushOut();
    return result;
  } catch (const UsageError& error) {
    declared.program.Refuse(error.what());
    return WrongUsage;
  } catch (const Store::NotOffered& reason) {
    Complain(reason.what());
    return WrongUsage;
  }
}

CommandLine::Description DescribeCommandLine() { return DeclaredVerbs().program.Describe(); }

}  // namespace Velora::Ts

#include "CommandLine.h"

#include "RegisteredVerbs.h"
#include "output/Output.h"
#include "store/database/DatabaseError.h"

#include <VeloraText/Printable.h>
#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

class CommandLine {
 public:
  CommandLine() : app("Shows, checks, copies and verifies the store of a local TS.", "velora-ts") {
    app.set_version_flag("--version", "velora-ts " VELORA_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    app.footer(
        "Exit code: 0 success, 1 the store has a fault or does not contain what was asked for, 2 wrong usage, 3 the "
        "store could not be read or written, 4 what is sealed was not changed, but not everything is "
        "sealed.\n\"velora-ts VERB --help\" has an example for each verb; "
        "\"man velora-ts\" says more.");
    for (const Registration* const verb : registeredVerbs) {
      Add(*verb);
    }
  }

  ExitCode Run(int argc, const char* const* argv) {
    try {
      app.parse(argc, argv);
      const ExitCode result = AskedVerb().Execute();
      FlushOut();
      return result;
    } catch (const CLI::RequiredError& error) {
      return app.get_subcommands().empty() ? Explain(CLI::ValidationError(LackingVerb())) : Explain(error);
    } catch (const CLI::ParseError& error) {
      return Explain(error);
    } catch (const UsageError& error) {
      return Explain(CLI::ValidationError(error.what()));
    } catch (const Store::NotOffered& reason) {
      Complain(reason.what());
      return WrongUsage;
    }
  }

 private:
  void Add(const Registration& verb) {
    CLI::App* const line = app.add_subcommand(verb.name, verb.help);
    line->group("Verbs");
    line->footer("Example:\n  velora-ts " + std::string(verb.example));
    Options options(*line);
    verbs.emplace(line, verb.make(options));
  }

  Verb& AskedVerb() const { return *verbs.at(app.get_subcommands().front()); }

  std::string LackingVerb() const {
    const std::vector<std::string> unknown = app.remaining();
    return unknown.empty() ? "expected a verb" : "there is no verb '" + unknown.front() + '\'';
  }

  /// Writes the help that was asked for, or what is wrong with the command line.
  ExitCode Explain(const CLI::ParseError& error) const {
    std::ostringstream help, complaint;
    const bool asked = app.exit(error, help, complaint) == 0;
    Velora::Text::WriteLines(std::cout, help.str());
    Velora::Text::WriteLines(std::cerr, complaint.str());
    return asked ? Done : WrongUsage;
  }

  CLI::App app;
  std::map<const CLI::App*, std::unique_ptr<Verb>> verbs;
};

}  // namespace

ExitCode RunCommandLine(int argc, const char* const* argv) { return CommandLine().Run(argc, argv); }

}  // namespace Velora::Ts

// velora-ts: looks after the store of a local TS.

#include "LookCommands.h"
#include "Settings.h"
#include "output/Output.h"
#include "verbs/Verbs.h"

#include <VeloraText/Printable.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>

namespace Velora::Ts {

namespace {

class CommandLine {
 public:
  CommandLine() : app("Looks after the store of a local TS.", "velora-ts") {
    app.set_version_flag("--version", "velora-ts " VELORA_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Exit code: 0 all is well, 1 something is wrong with the store or what was asked for is not in it, 2 wrong "
        "usage, 3 the store could not be read or written, 4 nothing that is sealed was changed, but not all is "
        "sealed.\n\"velora-ts VERB --help\" has an example for each verb; "
        "\"man velora-ts\" says more.");
    AddInit();
    AddCheck();
    AddPrepare();
    look.emplace([this](auto&... words) { return Add(words...); }, [this] { return Database(); }, result);
    AddExport();
    AddReport();
    AddBackup();
    AddCopy();
    AddSeal();
    AddVerify();
  }

  ExitCode Run(int argc, char** argv) {
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return Explain(error);
    }
    FlushOut();
    return result;
  }

 private:
  CLI::App* Add(const std::string& verb, const std::string& does, const std::string& example) {
    CLI::App* const added = app.add_subcommand(verb, does);
    added->add_option("--config", folder, "Folder where TSAL.config lies. Default: the current directory");
    added->footer("Example:\n  velora-ts " + example);
    return added;
  }
  Quor::TolvaServices::Local::Database Database() const {
    return Quor::TolvaServices::Local::ReadSettings(folder).database;
  }

  /// Writes the help that was asked for, or what is wrong with the command line.
  ExitCode Explain(const CLI::ParseError& error) const {
    std::ostringstream help, complaint;
    const bool asked = app.exit(error, help, complaint) == 0;
    Velora::Text::WriteLines(std::cout, help.str());
    Velora::Text::WriteLines(std::cerr, complaint.str());
    return asked ? Done : WrongUsage;
  }

  void AddInit() {
    CLI::App* const verb = app.add_subcommand(
        "init", "Writes the three files that a host needs into FOLDER, commented, and overwrites nothing.");
    verb->add_option("FOLDER", folder, "The folder that hosts will run in; it is made if it is not there")->required();
    verb->add_option("--instrument", instrument, "Name of the instrument in the records. Default: the computer's name");
    verb->footer("Example:\n  velora-ts init /data/scope-7 --instrument \"Scope 7\"");
    verb->callback([this] { result = Init(folder, instrument); });
  }

  void AddCheck() {
    CLI::App* const verb = Add("check",
                               "Does what the start of a host does, takes it back, and says for each step whether it "
                               "holds; then what the store holds. FOLDER is the host's current directory.",
                               "check --config /data/scope-7");
    verb->add_option("--library", start.library,
                     "File of the TS logging library that the host loads; its folder is looked into as well. Default: "
                     "the one that was installed with this program");
    verb->add_option("--activities", start.activities, "Name of the host's activities file. Default: activities.xml");
    verb->add_option("--configuration", start.configuration,
                     "Name of its instrument configuration. Default: instrument.xml");
    verb->callback([this] {
      start.folder = folder;
      result = Check(start);
    });
  }

  void AddPrepare() {
    CLI::App* const verb =
        Add("prepare", "Makes the store or brings it up to this version. Run as the owner of a server's database.",
            "prepare --hosts microscopes");
    verb->add_option("--hosts", hosts, "Let this role of the PostgreSQL server record, and nothing else");
    verb->callback([this] { result = Prepare(Database(), hosts); });
  }

  void AddExport() {
    CLI::App* const verb = Add("export",
                               "Writes what was recorded to standard output. RUN is a guid, the first letters of one, "
                               "\"last\" for the one recorded last, or a node that only one run has.",
                               "export last > run.jsonl\n  velora-ts export --since 2026-11-24 --until 2026-12-01 "
                               "--format csv > november.csv");
    auto* const name = verb->add_option("RUN", run, "The run to export");
    auto* const first =
        verb->add_option("--since", since, "Export runs that started then or later; UTC")->excludes(name);
    verb->add_option("--until", until, "... and before")->needs(first);
    verb->add_option("--format", format,
                     "jsonl, the canonical form; csv, a row for each event; or trace, for timeline viewers")
        ->check(CLI::IsMember({"jsonl", "csv", "trace"}));
    verb->callback([this] {
      if (run.empty() == since.empty()) {
        throw CLI::RequiredError("RUN or --since");
      }
      const std::string from = since.empty() ? "" : TimeOf(since);
      const std::string before = until.empty() ? "" : TimeOf(until);
      result = run.empty() ? ExportSpan(Database(), from, before, format) : ExportRun(Database(), run, format);
    });
  }

  void AddReport() {
    CLI::App* const verb = Add("report",
                               "Writes a page that shows a run, with all it needs in one file, for any browser. RUN is "
                               "named as for export.",
                               "report last -o run.html");
    verb->add_option("RUN", run, "The run to show")->required();
    verb->add_option("-o,--output", file, "Where to write. Default: run-GUID.html, with the first letters of the guid");
    verb->callback([this] { result = Report(Database(), run, file); });
  }

  void AddBackup() {
    CLI::App* const verb = Add("backup", "Copies the store to FILE while hosts record, and checks the copy.",
                               "backup /backup/veldmar-2026-11-24.db");
    verb->add_option("FILE", file, "A file that is not there yet")->required();
    verb->callback([this] { result = Backup(Database(), file); });
  }

  void AddCopy() {
    CLI::App* const verb = app.add_subcommand(
        "copy", "Copies a store into another database, file or server, or goes on with a copy that was interrupted.");
    verb->add_option("FROM", folder, "Folder with the TSAL.config of the store to copy")->required();
    verb->add_option("TO", target, "Folder with that of an empty store, or of an earlier copy")->required();
    verb->footer("Example:\n  velora-ts copy /data/veldmar /data/facility");
    verb->callback(
        [this] { result = CopyStore(Database(), Quor::TolvaServices::Local::ReadSettings(target).database); });
  }

  void AddSeal() {
    CLI::App* const verb = Add("seal", "Seals every finished run, so that verify finds what is changed later.",
                               "seal --anchor /safe/veldmar.anchor");
    verb->add_option("--anchor", file, "Write the newest hash to this file, to be kept away from the store");
    verb->callback([this] { result = SealRuns(Database(), file); });
  }

  void AddVerify() {
    CLI::App* const verb =
        Add("verify", "Names each run that is missing, altered or not sealed.", "verify --anchor /safe/veldmar.anchor");
    verb->add_option("--anchor", file, "Compare the seals with this file, which seal --anchor wrote");
    verb->callback([this] { result = Verify(Database(), file); });
  }

  CLI::App app;
  std::optional<LookCommands> look;
  HostCheck::HostStart start{"", HostCheck::LibraryBesideProgram()};
  std::string folder, instrument, target, hosts, run, since, until, file, format = "jsonl";
  ExitCode result = Done;
};

}  // namespace

}  // namespace Velora::Ts

int main(int argc, char** argv) {
  try {
    return Velora::Ts::CommandLine().Run(argc, argv);
  } catch (const std::bad_alloc&) {
    Velora::Ts::Complain("there is not enough memory for that");
    return Velora::Ts::Impossible;
  } catch (const std::exception& reason) {
    Velora::Ts::Complain(reason.what());
    return Velora::Ts::Impossible;
  }
}

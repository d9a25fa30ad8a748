#pragma once

#include "Settings.h"
#include "host-check/HostCheck.h"

#include <string>
#include <vector>

namespace Velora::Ts {

/// What the program answers a script.
enum ExitCode {
  Done = 0,        ///< Nothing to complain of.
  Found = 1,       ///< Something is wrong with the store, or what was asked for is not in it.
  WrongUsage = 2,  ///< The command line is wrong.
  Impossible = 3,  ///< The store could not be read or written.
  Unsealed = 4,    ///< What is sealed is as it was, but not all is sealed, or could be compared.
};

/// Writes the three files that a host needs into a folder; a file that is there stays as it is.
/// @param instrument its name in the records; empty for the computer's.
ExitCode Init(const std::string& folder, const std::string& instrument);
/// Makes a store or brings it up, and lets a role of the server record in it where one is named.
ExitCode Prepare(const Quor::TolvaServices::Local::Database& database, const std::string& hosts);
/// Says whether a host that starts like that would record, and what the store holds.
ExitCode Check(const HostCheck::HostStart& start);
/// Writes a run to standard output: "jsonl", its canonical form, "csv" or "trace".
ExitCode ExportRun(const Quor::TolvaServices::Local::Database& database, const std::string& name,
                   const std::string& format);
/// The same for the runs that started, and the events of no run that happened, in a span of time; `until` may be empty.
ExitCode ExportSpan(const Quor::TolvaServices::Local::Database& database, const std::string& since,
                    const std::string& until, const std::string& format);
/// Writes a page that shows a run to a file; to one named for the run where none is named.
ExitCode Report(const Quor::TolvaServices::Local::Database& database, const std::string& name, const std::string& file);
/// Copies a store, as it is at this moment, to a file that is not there yet.
ExitCode Backup(const Quor::TolvaServices::Local::Database& database, const std::string& file);
/// Copies a store into another database, or goes on with a copy, and compares the two.
ExitCode CopyStore(const Quor::TolvaServices::Local::Database& source,
                   const Quor::TolvaServices::Local::Database& target);
/// Seals every finished run, and what belongs to none; writes the newest hash to a file where one is named.
ExitCode SealRuns(const Quor::TolvaServices::Local::Database& database, const std::string& anchorFile);
/// Compares everything that is sealed with its seals, and these with an anchor where one is named.
ExitCode Verify(const Quor::TolvaServices::Local::Database& database, const std::string& anchorFile);

/// Which runs to list; an empty text leaves it open.
struct RunFilter {
  std::string since, instrument, activity;
  bool unfinished = false;  ///< Only those that did not finish.
  bool json = false;
  long long limit = 50;
};
/// Lists runs, the newest first.
ExitCode ListRuns(const Quor::TolvaServices::Local::Database& database, const RunFilter& filter);

struct ShowOptions {
  bool tree = false;                 ///< Everything below the run in place of its children.
  bool events = false;               ///< Its events as well.
  std::vector<std::string> columns;  ///< Parameters to show of each execution.
  bool json = false;
};
ExitCode ShowRun(const Quor::TolvaServices::Local::Database& database, const std::string& name,
                 const ShowOptions& options);
/// Writes the events of a run, the newest without a name, until it is finished.
ExitCode Tail(const Quor::TolvaServices::Local::Database& database, const std::string& name);

}  // namespace Velora::Ts

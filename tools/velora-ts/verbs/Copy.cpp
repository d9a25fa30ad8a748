#include "output/Output.h"
#include "output/Progress.h"
#include "store/copying/StoreCopy.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/reading/SettledReader.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/schema/Versions.h"
#include "store/settings/Settings.h"
#include "store/soundness/Soundness.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Everything of a store up to some numbers, in its canonical form.
struct Content {
  Numbers counts{};
  std::string hash;

  bool operator==(const Content&) const = default;
};

Content ContentOf(const Reader& store, const Numbers& upTo, Progress& progress) {
  Content content;
  Sha256 sha;
  Records records(store, upTo, [&](std::string_view line) {
    sha.Add(line);
    progress.Add(1);
  });
  const auto count = [&] {
    for (std::size_t kind = 0; kind < content.counts.size(); ++kind) {
      content.counts[kind] += records.Counts()[kind];
    }
  };
  records.WriteRest();
  count();
  for (const Run& run : AllRuns(store)) {
    if (run.root <= upTo[Executions]) {
      records.WriteRun(run.root);
      count();
    }
  }
  content.hash = sha.Finish();
  return content;
}

/// Shows how many rows of the table that is being copied have been.
class CopyProgress {
 public:
  void Add(const std::string& table) {
    if (table != current) {
      progress.emplace("Copying " + table, 0);
      current = table;
    }
    progress->Add(1);
  }

 private:
  std::string current;
  std::optional<Progress> progress;
};

/// Whether a copy holds what the store of which it was made holds; says so.
ExitCode Compare(const Reader& from, const Reader& copy) {
  const Numbers upTo = HighestNumbers(from);
  Progress progress("Comparing records", 0);
  const Content content = ContentOf(from, upTo, progress);
  const bool equal =
      ContentOf(copy, upTo, progress) == content && HighestNumbers(copy) == upTo && ReadSeals(copy) == ReadSeals(from);
  from.ExpectUntouched();
  if (!equal) {
    Say("finding: '" + copy.Name() + "' is no copy of '" + from.Name() + "': its records are others");
    return Found;
  }
  Say("store '" + from.Name() + "' copied to '" + copy.Name() + "' and compared: " +
      std::to_string(content.counts[Executions]) + " executions, " + std::to_string(content.counts[Events]) +
      " events, " + std::to_string(content.counts[Parameters]) + " parameters, hash " + content.hash);
  return Done;
}

class CopyVerb : public Verb {
 public:
  explicit CopyVerb(Options& options) {
    options.AddRequiredText("FROM", from, "Folder with the TSAL.config of the store to copy");
    options.AddRequiredText("TO", to, "Folder with that of an empty store, or of an earlier copy");
  }

  ExitCode Execute() override {
    const Database source = ReadSettings(from).database;
    const Database target = ReadSettings(to).database;
    if (const Reader seen(source); seen.SchemaVersion() != schemaVersion) {
      throw Error("TS store '" + seen.Name() + "' has a schema of version " + std::to_string(seen.SchemaVersion()) +
                  "; expected version " + std::to_string(schemaVersion) + ": run velora-ts prepare first");
    }
    const Reader settled = SettledReader(source);  // so that the next copy can go on behind it
    if (const auto findings = ValueFindings(settled); !findings.empty()) {
      throw Error("'" + settled.Name() + "' cannot be copied as it is: " + findings.front() + "; see velora-ts verify");
    }
    Copy(settled, target);
    return Compare(settled, Reader(target));
  }

 private:
  static void Copy(const Reader& store, const Database& target) {
    CopyProgress progress;
    CopyRows(store, target, [&progress](const std::string& table) { progress.Add(table); });
  }

  std::string from, to;
};

}  // namespace

extern const Registration registeredCopy = {
    "copy", "Copies a store into another database, file or server, or goes on with a copy that was interrupted.",
    "copy /data/veldmar /data/facility", &Make<CopyVerb>};

}  // namespace Velora::Ts

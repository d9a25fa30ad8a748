#include "output/Output.h"
#include "output/Progress.h"
#include "store/copying/StoreCopy.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/reading/SettledReader.h"
#include "store/record/Records.h"
#include "store/record/Seals.h"
#include "store/record/Sha256.h"
#include "store/settings/Settings.h"
#include "store/soundness/Soundness.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

/// The canonical form of a store up to some numbers: how many records of each kind, and their hash.
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

/// Shows how many rows of the current table were copied.
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

/// Compares a copy with its source and says the result.
ExitCode Compare(const Reader& from, const Reader& copy) {
  const Numbers upTo = HighestNumbers(from);
  Progress progress("Comparing records", 0);
  const Content content = ContentOf(from, upTo, progress);
  const bool equal =
      ContentOf(copy, upTo, progress) == content && HighestNumbers(copy) == upTo && ReadSeals(copy) == ReadSeals(from);
  from.ExpectUntouched();
  if (!equal) {
    Say("finding: '" + copy.Name() + "' differs from '" + from.Name() + "' after the copying");
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
    options.AddRequiredText("TO", to, "Folder with the TSAL.config of an empty store or of an earlier copy");
  }

  ExitCode Execute() override {
    const Database source = ReadSettings(from).database;
    const Database target = ReadSettings(to).database;
    ExpectThisVersion(Reader(source));
    const Reader settled = SettledReader(source);  // so that a later copy can continue after its last row
    if (const auto findings = ValueFindings(settled); !findings.empty()) {
      throw Error("'" + settled.Name() + "' cannot be copied: " + findings.front() +
                  "; velora-ts verify lists all findings");
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
    "copy", "Copies a store into another database, in a file or on a server, or continues an earlier copy.",
    "copy /data/veldmar /data/facility", &Make<CopyVerb>};

}  // namespace Velora::Ts

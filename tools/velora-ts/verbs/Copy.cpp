#include "output/Output.h"
#include "store/copying/StoreCopy.h"
#include "store/reading/Reader.h"
#include "store/reading/SettledReader.h"
#include "store/settings/Settings.h"
#include "store/soundness/Soundness.h"
#include "verbs/StoreContent.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <string_view>

namespace Velora::Ts {

using namespace Store;

namespace {

class CopyVerb : public Verb {
 public:
  explicit CopyVerb(Options& options) {
    options.AddRequiredText("FROM", from, "Folder with the TSAL.config of the store to copy", "FOLDER");
    options.AddRequiredText("TO", to, "Folder with the TSAL.config of the store that takes it in", "FOLDER");
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
    ContentReader visited("Copying");
    const Copied copied =
        CopyRows(settled, target, [&](const Table& table, std::string_view row) { visited.Add(table, row); });
    settled.ExpectUntouched();
    Content content = visited.Finish();
    if (ContentOf(Reader(target), copied.Range()) != content) {
      Say("finding: '" + NameOf(target) + "' differs from '" + settled.Name() + "' after the copying");
      return Found;
    }
    const auto count = [&](const char* table) { return std::to_string(content[table].rows) + ' ' + table; };
    Say("store '" + settled.Name() + "' copied to '" + NameOf(target) + "' " +
        (copied.number ? "as store " + std::to_string(*copied.number) + " there, " : "") +
        "and compared: " + count("executions") + ", " + count("events") + ", " + count("parameters"));
    return Done;
  }

 private:
  std::string from, to;
};

}  // namespace

extern const Registration registeredCopy = {
    "copy", "Copies a store into another one, which can have others, in a file or on a server.",
    "copy /data/veldmar /data/facility", &Make<CopyVerb>};

}  // namespace Velora::Ts

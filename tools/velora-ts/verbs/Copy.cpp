#include "output/Output.h"
#include "output/Progress.h"
#include "store/copying/StoreCopy.h"
#include "store/reading/Reader.h"
#include "store/reading/SettledReader.h"
#include "store/record/Sha256.h"
#include "store/schema/Tables.h"
#include "store/settings/Settings.h"
#include "store/soundness/Soundness.h"
#include "verbs/Verb.h"

#include "store/Error.h"

#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

/// The rows of a table: how many, and the hash of them all in their order.
struct TableContent {
  long long rows = 0;
  std::string hash;

  bool operator==(const TableContent&) const = default;
};

using Content = std::map<std::string, TableContent>;

/// Computes the content of a store from its rows, and shows how far it is.
class ContentReader {
 public:
  explicit ContentReader(std::string doing) : doing(std::move(doing)) {}

  void Add(const Table& table, std::string_view row) {
    if (table.name != current) {
      progress.emplace(doing + ' ' + table.name, 0);
      current = table.name;
    }
    Rows& rows = tables[table.name];
    ++rows.count;
    rows.sha.Add(row);
    progress->Add(1);
  }
  Content Finish() {
    Content content;
    for (const Table& table : Tables()) {
      Rows& rows = tables[table.name];
      content[table.name] = {rows.count, rows.sha.Finish()};
    }
    return content;
  }

 private:
  struct Rows {
    long long count = 0;
    Sha256 sha;
  };

  const std::string doing;
  std::string current;
  std::optional<Progress> progress;
  std::map<std::string, Rows> tables;
};

Content ContentOf(const Reader& store, const Keys& keys) {
  ContentReader content("Comparing");
  VisitRows(store, keys, [&](const Table& table, std::string_view row) { content.Add(table, row); });
  return content.Finish();
}

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

#include "output/FreshFile.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "store/copying/FileCopy.h"
#include "store/reading/KnownStores.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/record/Records.h"
#include "store/soundness/Soundness.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr unsigned ownerAndGroup = 0640;  // the permissions of a store

std::string CountOf(const Reader& store, Kind kind) {
  Rows count(store, "SELECT COUNT(*) FROM " + TableOf(kind).name);
  count.Next();
  return std::to_string(count.Integer(0)) + ' ' + TableOf(kind).name;
}

/// Checks a copy. @return what it has, in words.
std::string ExpectSound(const Reader& store, const Reader& copy) {
  Progress progress("Checking the file, million steps", 0);
  if (const auto damage = DamageFindings(copy, [&progress] { progress.Add(1); }); !damage.empty()) {
    throw Error("the copy of '" + store.Name() + "' is damaged: " + damage.front());
  }
  for (const KnownStore& origin : KnownStores(store)) {
    if (HighestNumbers(copy, origin.number) != HighestNumbers(store, origin.number)) {
      throw Error("the copy of '" + store.Name() + "' lacks rows");
    }
  }
  return CountOf(copy, Executions) + ", " + CountOf(copy, Events);
}

class BackupVerb : public StoreVerb {
 public:
  explicit BackupVerb(Options& options) : StoreVerb(options) {
    options.AddRequiredText("FILE", file, "The file to write; it must not exist");
  }

  ExitCode Execute() override {
    const Reader store(Database());
    ExpectFile(store, file);
    if (std::error_code unknown;
        std::filesystem::exists(std::filesystem::symlink_status(System::PathOf(file), unknown))) {
      throw Error("file '" + file + "' cannot be written: " + std::generic_category().message(EEXIST));
    }
    FreshFile fresh("file '" + file + "'", file, ownerAndGroup);
    {
      Progress progress("Copying pages", 0);
      CopyFile(store, fresh.Path(), [&progress](long long pages) { progress.Show(pages); });
    }
    store.ExpectUntouched();
    const std::string content = ExpectSound(store, Reader({Database::Kind::Sqlite, fresh.Path()}));
    fresh.TakeName(FreshFile::Existing::Keep);
    Say("store '" + store.Name() + "' copied to '" + file + "' and checked: " + content);
    return Done;
  }

 private:
  std::string file;
};

}  // namespace

extern const Registration registeredBackup = {"backup",
                                              "Copies the store to FILE while hosts record, and checks the copy.",
                                              "backup /backup/veldmar-2026-11-24.db", &Make<BackupVerb>};

}  // namespace Velora::Ts

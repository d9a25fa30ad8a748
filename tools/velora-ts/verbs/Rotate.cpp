#include "output/FreshFile.h"
#include "output/Output.h"
#include "output/Times.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/SettledReader.h"
#include "store/record/Records.h"
#include "store/recording/Writer.h"
#include "store/rotating/Continuation.h"
#include "store/rotating/HeldFile.h"
#include "store/rotating/HostsOfFile.h"
#include "store/rotating/NewStore.h"
#include "store/schema/StoreNumbers.h"
#include "store/values/StoredTime.h"
#include "verbs/AtFacility.h"
#include "verbs/Sealing.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/SecondName.h>
#include <VeloraSystem/System.h>

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr unsigned ownerAndGroup = 0640;  // the permissions of a store

bool Exists(const std::string& file) {
  std::error_code unknown;
  return std::filesystem::exists(std::filesystem::symlink_status(System::PathOf(file), unknown));
}

/// The path of a file without links, so that it is the file whose name another one gets.
std::string WithoutLinks(const std::string& file) {
  std::error_code unknown;
  const auto path = std::filesystem::canonical(System::PathOf(file), unknown);
  return unknown ? file : System::TextOf(path);
}

/// "ts-2026-11-26.db" for "ts.db".
std::string NameOfToday(const std::string& file) {
  const std::filesystem::path path = System::PathOf(file);
  const std::string day = PartsOf(LocalTime(ToStoredTime(Now()), false)).value().date;
  return System::Joined(System::TextOf(path.parent_path()),
                        System::TextOf(path.stem()) + '-' + day + System::TextOf(path.extension()));
}

void ExpectNoHost(const Reader& store) {
  if (const std::string host = LivingHost(store); !host.empty()) {
    throw Error("TS database '" + store.Name() + "' is in use by " + host + "; expected that no host records into it");
  }
}

bool HasOtherStores(const Reader& store) {
  Rows others(store, "SELECT EXISTS (SELECT 1 FROM stores WHERE NOT " + IsOfStore("store_id", thisStore) + ")");
  return others.Next() && others.Integer(0) != 0;
}

bool IsEmpty(const Reader& store) {
  Rows sessions(store, "SELECT EXISTS (SELECT 1 FROM sessions)");
  return sessions.Next() && sessions.Integer(0) == 0;
}

/// Puts the file of a store aside under another name, and a new store in its place. At any moment the name leads to
/// the whole old store or to the whole new one.
class Rotation {
 public:
  Rotation(const std::string& file, const std::string& aside) : database{Database::Kind::Sqlite, file}, aside(aside) {
    for (const char* const suffix : {"", "-wal", "-shm", "-journal"}) {
      if (Exists(aside + suffix)) {
        throw Error("there is a file '" + aside + suffix + "' already; expected another name after --to");
      }
    }
  }

  /// Seals what is finished.
  ExitCode Seal(const std::string& anchorFile) {
    const auto writer = OpenForWriting(database, Opening::ExpectsStore);
    const Reader store(database);
    if (HasOtherStores(store)) {
      throw NotOffered("'" + store.Name() +
                       "' holds the records of other stores; rotate is for the file of an instrument");
    }
    if (const ExitCode code = SealWith(*writer, store, anchorFile); code != Done) {
      return code;
    }
    upTo = HighestNumbers(store);
    NoteThatHostsEnded(*writer);
    return Done;
  }

  void ChangeNames() {
    const std::string& file = database.where;
    FreshFile fresh("file '" + file + "'", file, ownerAndGroup);
    end = EndOf(Reader(database), thisStore);
    MakeStore(fresh.Path(), end);
    std::string doing = "expected its owner or root: the new file cannot get the rights of '" + file + "'";
    try {
      System::MakeLike(fresh.Path(), file);
      ExpectNoHost(Reader(database));  // which can name it; else it would only be found that the file is in use
      std::optional<HeldFile> held(std::in_place, file);
      ExpectNothingNew();
      doing = "file '" + aside + "' cannot be made";
      System::SecondName old(file, aside);
      if (!System::OpenFilesGiveUpNames()) {
        held.reset();
        ExpectNoLog();
      }
      fresh.TakeName(FreshFile::Existing::Replace);
      old.Keep();
    } catch (const System::Failure& failure) {
      throw Error(doing + ": " + failure.what());
    }
  }

  const Continued& End() const { return end; }

 private:
  void ExpectNothingNew() const {
    const Reader store(database);
    ExpectNoHost(store);
    if (HighestNumbers(store) != upTo) {
      throw Error("a host recorded into '" + store.Name() + "' meanwhile; run velora-ts rotate again when none does");
    }
  }

  // Where a file that is open keeps its name, a host can have begun and ended since it was held.
  void ExpectNoLog() const {
    if (Exists(database.where + "-wal")) {
      throw Error("a host began to record into '" + database.where + "'; run velora-ts rotate again when none does");
    }
  }

  const Database database;
  const std::string aside;
  PerKind upTo = none;
  Continued end;
};

void MakeReadOnly(const std::string& file) {
  try {
    System::MakeReadOnly(file);
  } catch (const System::Failure& failure) {
    throw Error("'" + file + "' is whole, but can still be written: " + failure.what() +
                "; run velora-ts rotate again to make it read-only");
  }
}

/// If a rotation was interrupted between the two names, the file still has both. On Windows, nothing is taken away: a
/// name found there could be that of the store, written in another way.
void TakeSecondNameAway(const std::string& file) {
  std::error_code unknown;
  if (!System::OpenFilesGiveUpNames() || std::filesystem::hard_link_count(System::PathOf(file), unknown) < 2 ||
      unknown) {
    return;
  }
  const System::FileId id = System::IdOf(file);
  for (const auto& one : std::filesystem::directory_iterator(System::PathOf(file).parent_path(), unknown)) {
    const std::string name = System::TextOf(one.path());
    if (name != file && !one.is_symlink(unknown) && System::IdOf(name) == id &&
        !Exists(std::string(name).append("-wal"))) {
      std::filesystem::remove(one.path());
      Say(std::string("took the second name '")
              .append(name)
              .append("' away from '")
              .append(file)
              .append("', as a rotation that was interrupted left it"));
      return;
    }
  }
}

/// The old file if a rotation was interrupted after the names had changed: it can still be written. Else empty.
std::string LeftByAnInterruption(const Reader& store, const std::string& file) {
  const std::optional<Continued> previous = PreviousOf(store, thisStore);
  std::string old = previous ? FileBeside(file, previous->guid) : "";
  return old.empty() || System::IsReadOnly(old) ? "" : old;
}

class RotateVerb : public StoreVerb {
 public:
  explicit RotateVerb(Options& options) : StoreVerb(options, With::Nothing) {
    options.AddText("--to", aside, "The other name of the file. Default: that of the store with the date of today",
                    "FILE");
    options.AddText("--anchor", anchorFile,
                    "Write the newest hash to this file, as seal does; in the end it is that of the new store", "FILE");
    options.AddText("--check", checked,
                    "Do not rotate. Send what the facility, which TSAL.config names, does not have yet of this file, "
                    "compare all of it, and say whether the facility has everything",
                    "FILE");
    options.Exclude("--check", "--to");
    options.Exclude("--check", "--anchor");
  }

  ExitCode Execute() override {
    const std::optional<Store::Database> facility = ReadFacility(Folder());
    if (!checked.empty()) {
      if (!facility) {
        throw NotOffered("TSAL.config names no facility; expected <Forward Connection=\"...\"/> in it");
      }
      return SendAndCompare(StoreAt(checked), *facility);
    }
    const Store::Database database = Database();
    if (database.kind != Database::Kind::Sqlite) {
      throw NotOffered(
          "rotate is for a store in a file; a server keeps the events of each month apart, and can archive "
          "them (docs/postgresql.md)");
    }
    const std::string file = WithoutLinks(database.where);
    TakeSecondNameAway(file);
    std::string to;
    {
      const Reader store({Database::Kind::Sqlite, file});
      ExpectNoHost(store);
      to = LeftByAnInterruption(store, file);
      if (to.empty() && IsEmpty(store)) {
        Say("nothing was recorded into '" + file + "' yet, so it stays");
        return Done;
      }
    }
    const bool isLeft = !to.empty();
    to = isLeft ? to : aside.empty() ? NameOfToday(file) : System::Absolute(aside);
    const ExitCode code = isLeft ? FinishEarlier(file, to) : Rotate(file, to);
    return code == Done && facility ? CheckAfter(to, *facility) : code;
  }

 private:
  ExitCode Rotate(const std::string& file, const std::string& to) const {
    Rotation rotation(file, to);
    if (const ExitCode code = rotation.Seal(anchorFile); code != Done) {
      return code;
    }
    rotation.ChangeNames();
    if (const ExitCode code = LeadAnchorOn(file, to); code != Done) {
      return code;
    }
    MakeReadOnly(to);
    Say("'" + to + "' has all records so far, and can only be read; what comes is recorded into a new store in '" +
        file + "', which continues it from seal " + rotation.End().hash);
    return Done;
  }

  ExitCode FinishEarlier(const std::string& file, const std::string& old) const {
    if (const ExitCode code = LeadAnchorOn(file, old); code != Done) {
      return code;
    }
    MakeReadOnly(old);
    Say("'" + old + "' is read-only now; the rotation to '" + file + "' had been interrupted before that");
    return Done;
  }

  /// Seals what the new store says of the old one, so that the anchor can be of the new one from now on.
  ExitCode LeadAnchorOn(const std::string& file, const std::string& old) const {
    if (anchorFile.empty()) {
      return Done;
    }
    const Store::Database database{Database::Kind::Sqlite, file};
    const auto writer = OpenForWriting(database, Opening::ExpectsStore);
    return SealWith(*writer, SettledReader(database), anchorFile, old);
  }

  // The rotation is done. What the facility does not have can be sent at any time: the file stays.
  static ExitCode CheckAfter(const std::string& to, const Store::Database& facility) {
    try {
      return SendAndCompare({Database::Kind::Sqlite, to}, facility);
    } catch (const Error& error) {
      Complain(std::string(error.what()) + "; so it is not known whether the facility has everything. Run velora-ts " +
               "rotate --check '" + to + "' before the file is taken away");
      return Unsealed;
    }
  }

  std::string aside, anchorFile, checked;
};

}  // namespace

extern const Registration registeredRotate = {
    "rotate",
    "Begins a new file for what is recorded from now on, and keeps the old one beside it under another name, whole, "
    "sealed and read-only. Hosts must not record meanwhile.",
    "rotate --anchor /safe/veldmar.anchor", &Make<RotateVerb>};

}  // namespace Velora::Ts

// The local TS over a file system that fails, that loses what was not synced, and that is shared with a slow writer.

#include "Comparison.h"
#include "FaultyFiles.h"
#include "Recording.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <new>
#include <random>
#include <thread>
#include <utility>

namespace {

namespace fs = std::filesystem;
using Quor::TolvaServices::TsError;
using Clock = std::chrono::steady_clock;
using Files = std::map<std::string, std::string>;  // their contents

Recording Host(const fs::path& folder, const std::string& name, Told& told) {
  return {folder, name, [&](const std::string& record) { told.announced.insert(record); },
          [&](const std::string& record) { told.acknowledged.insert(record); }};
}

/// A store as it lies in a folder, and what hosts had been told by then.
struct Snapshot {
  std::string name;
  Files content;
  Told told;
};

std::vector<Snapshot> Starts() {
  Snapshot killed{"store of a killed host", {}, {}};
  const ScratchFolder folder;
  PrepareFolder(folder.path);
  Recording host = Host(folder.path, "killed", killed.told);
  for (int record = 0; record < 9; ++record) {
    host.Next();
  }
  for (const char* const file : {"ts.db", "ts.db-wal"}) {
    killed.content[file] = ContentOf(folder / file);
  }
  return {{"new store", {}, {}}, killed};
}

void PutFiles(const fs::path& folder, const Files& files) {
  fs::remove_all(folder);
  PrepareFolder(folder);
  for (const auto& [path, content] : files) {
    std::ofstream(folder / fs::path(path).filename(), std::ios::binary) << content;
  }
}

/// Records with one fault on the way. After an error the fault is over, and the same objects must go on.
/// @param elsewhere a folder with another store, for the session that ends the one in this store.
/// @return whether the fault came about.
bool RecordWith(const FaultKind& kind, int n, bool lasting, const Snapshot& start, const fs::path& elsewhere,
                int& errors) {
  const ScratchFolder scratch;
  const fs::path folder = scratch / "store";
  PutFiles(folder, start.content);
  Told told = start.told;
  Told toldElsewhere;
  Recording host = Host(folder, "host", told);
  Recording other = Host(elsewhere, "other", toldElsewhere);
  FaultyFiles files;
  files.Fail(kind, n, lasting);
  const auto next = [&](Recording& recording) {
    const std::string database = (&recording == &host ? folder : elsewhere) / "ts.db";
    try {
      return recording.Next();
    } catch (const TsError& error) {
      const std::string text = error.what();
      EXPECT_NE(text.find("'" + database + "'"), std::string::npos) << text;
      EXPECT_NE(text.find(FaultyFiles::Reason(kind)), std::string::npos) << text;
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(kind.name, std::string("NoMemoryToMap"));
    }
    EXPECT_TRUE(files.HasFailed());
    files.Heal();
    ++errors;
    recording.Next();
  };
  for (int record = 0; record < 6; ++record) {
    next(host);
  }
  const Files abandoned{{"ts.db", ContentOf(folder / "ts.db")}, {"ts.db-wal", ContentOf(folder / "ts.db-wal")}};
  next(other);  // the session in the store ends
  files.Heal();
  PutFiles(scratch / "abandoned", abandoned);
  EXPECT_EQ(Compare(scratch / "abandoned", told).text, "") << "after a crash";
  files.Disuse();
  EXPECT_EQ(Compare(folder, told).text, "");
  // A disk that does not sync any more can neither keep the last record nor take it back.
  if (kind.call != Call::Sync || !lasting) {
    EXPECT_EQ(StoredRecords(folder / "ts.db"), told.acknowledged) << "what raised was stored";
  }
  return files.HasFailed();
}

class FailingCall : public testing::TestWithParam<FaultKind> {};

TEST_P(FailingCall, IsAnErrorOrDoesNoHarm) {
  const FaultKind& kind = GetParam();
  const ScratchFolder elsewhere;
  PrepareFolder(elsewhere.path);
  int faults = 0;
  int errors = 0;
  for (const Snapshot& start : Starts()) {
    for (const bool lasting : {false, true}) {
      for (int n = 1; !(lasting && kind.passing); ++n, ++faults) {
        SCOPED_TRACE((lasting ? "from call " : "at call ") + std::to_string(n) + ", " + start.name);
        if (!RecordWith(kind, n, lasting, start, elsewhere.path, errors)) {
          break;
        }
      }
    }
  }
  std::printf("%s: %d faults, %d errors\n", kind.name, faults, errors);
  EXPECT_GT(faults, 0);
}

INSTANTIATE_TEST_SUITE_P(, FailingCall, testing::ValuesIn(FaultyFiles::Kinds()),
                         [](const auto& kind) { return kind.param.name; });

/// Records while connections are closed and others move the log into the database, and takes down what would be left
/// before every sync: nothing of what was not synced, or all of it in some files.
std::vector<Snapshot> PowerLosses(const std::function<bool(const std::string& path)>& syncs) {
  const ScratchFolder folder;
  PrepareFolder(folder.path);
  FaultyFiles files;
  Told told;
  std::vector<Snapshot> left;
  std::mt19937 random(1);
  files.syncs = syncs;
  files.beforeSync = [&] {
    left.push_back({"", files.synced, told});
    left.push_back(left.back());
    for (const char* const name : {"ts.db", "ts.db-wal"}) {
      if (const fs::path file = folder / name; random() % 2 == 0 && fs::exists(file)) {
        left.back().content[file] = ContentOf(file);
      }
    }
  };
  const FaultKind cannotLock{"", Call::LockShared, SQLITE_IOERR_SHMLOCK};
  const Quor::TolvaServices::Types::Tsid unknown("00000000-0000-4000-8000-00000000000a");
  Recording host = Host(folder.path, "host", told);
  for (int record = 0; record < 60; ++record) {
    host.Next();
    if (record % 9 == 8) {  // an error of the database closes the connection, the last one removes the log
      files.Fail(cannotLock, 1, false);
      EXPECT_THROW(Quor::TolvaServices::Methods::ActivityMethods::GetActivityExecution(unknown, false, nullptr),
                   TsError);
      EXPECT_FALSE(fs::exists(folder / "ts.db-wal"));
    }
    if (record % 5 == 4) {
      Query(folder / "ts.db", record % 2 == 0 ? "PRAGMA wal_checkpoint(RESTART)" : "PRAGMA wal_checkpoint(TRUNCATE)");
    }
  }
  files.beforeSync();
  files.beforeSync = [] {};
  return left;
}

TEST(PowerLoss, LosesNothingThatWasAcknowledged) {
  static const struct {
    const char* unsynced;  // the end of the names of the files whose sync is left out
    bool loses;
  } rows[] = {{"nothing", false}, {"-wal", true}, {"ts.db", true}, {"", true}};
  for (const auto& [unsynced, loses] : rows) {
    SCOPED_TRACE(std::string("not synced: *") + unsynced);
    const ScratchFolder folder;
    Findings all;
    const std::vector<Snapshot> losses = PowerLosses([end = std::string(unsynced)](const std::string& path) {
      return path.size() < end.size() || path.compare(path.size() - end.size(), end.size(), end) != 0;
    });
    const FaultyFiles passing;  // the real ones, without the time that a sync takes
    for (const Snapshot& left : losses) {
      PutFiles(folder.path, left.content);
      all += Compare(folder.path, left.told);
    }
    std::printf("*%-8s not synced: %zu losses of power, %zu records lost, %zu incomplete, %d stores damaged\n",
                unsynced, losses.size(), all.lost, all.half, all.damaged);
    EXPECT_EQ(!all.text.empty(), loses) << all.text.substr(0, 2000);
    EXPECT_GT(losses.size(), 150U);
  }
}

/// Begins to write into a store that lies in the folder, in another process, which ends with its pipe.
std::unique_ptr<FILE, int (*)(FILE*)> OtherProcess(const ScratchFolder& folder) {
  std::unique_ptr<FILE, int (*)(FILE*)> shell(
      popen(("cd '" + folder.path.string() + "' && exec sqlite3 ts.db").c_str(), "w"), pclose);
  std::fputs("BEGIN IMMEDIATE;\n.shell touch begun\n", shell.get());
  std::fflush(shell.get());
  while (!fs::exists(folder / "begun")) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return shell;
}

void ExpectToWaitFor(const std::string& writer, Recording& host, const ScratchFolder& folder) {
  const Clock::time_point start = Clock::now();
  try {
    host.Next();
    ADD_FAILURE() << "written beside " << writer;
  } catch (const TsError& error) {
    const std::string text = error.what();
    EXPECT_NE(text.find("'" + (folder / "ts.db").string() + "' was being written by " + writer), std::string::npos)
        << text;
    EXPECT_NE(text.find("30 seconds"), std::string::npos) << text;
  }
  EXPECT_NEAR(std::chrono::duration<double>(Clock::now() - start).count(), 30, 0.5);
}

TEST(Writer, IsWaitedForThirtySecondsAndThenNamed) {
  const ScratchFolder folder;
  PrepareFolder(folder.path);
  FaultyFiles files;
  Told told;
  Recording host = Host(folder.path, "host", told);
  host.Next();
  for (int again = 0; again < 2; ++again) {  // on one connection
    const SqlConnection slow = OpenFile(folder / "ts.db");
    slow->RunScript("BEGIN IMMEDIATE");
    files.afterSleep = [&, end = Clock::now() + std::chrono::seconds(20)] {
      if (Clock::now() > end) {
        slow->RunScript("COMMIT");
        files.afterSleep = [] {};
      }
    };
    host.Next();
  }
  {
    const SqlConnection slow = OpenFile(folder / "ts.db");
    slow->RunScript("BEGIN IMMEDIATE");
    ExpectToWaitFor("another thread of this process", host, folder);
  }
  {
    const auto slow = OtherProcess(folder);
    ExpectToWaitFor("process ", host, folder);
  }
  host.Next();
  EXPECT_EQ(StoredRecords(folder / "ts.db"), told.acknowledged);
}

TEST(Files, OfTheLogThatAreDeletedAreMissedBeforeAnythingIsAcknowledged) {
  const std::string inTurn = "while the host waits for its turn", inCommit = "in a commit";
  const std::pair<const char*, std::string> rows[] = {{"ts.db-wal", "before a record"},
                                                      {"ts.db-shm", "before a record"},
                                                      {"ts.db-wal", inTurn},
                                                      {"ts.db-wal", inCommit}};
  for (const auto& [file, when] : rows) {
    SCOPED_TRACE(file + (" " + when));
    const ScratchFolder folder;
    PrepareFolder(folder.path);
    FaultyFiles files;
    Told told;
    Recording host = Host(folder.path, "host", told);
    for (int record = 0; record < 5; ++record) {
      host.Next();
    }
    const auto remove = [path = folder / file] { fs::remove(path); };
    SqlConnection slow;
    if (when == inTurn) {
      slow = OpenFile(folder / "ts.db");
      slow->RunScript("BEGIN IMMEDIATE");
      files.afterSleep = [&] {
        remove();
        slow.reset();
        files.afterSleep = [] {};
      };
    } else if (when == inCommit) {
      files.beforeSync = remove;
    } else {
      remove();
    }
    try {
      host.Next();
      ADD_FAILURE() << "acknowledged";
    } catch (const TsError& error) {
      EXPECT_NE(std::string(error.what()).find("was removed or replaced"), std::string::npos) << error.what();
    }
    files.beforeSync = [] {};
    host.Next();
    EXPECT_EQ(Compare(folder.path, told).text, "");  // closing the connection saved what was in the log
    if (when != inCommit) {
      EXPECT_EQ(StoredRecords(folder / "ts.db"), told.acknowledged) << "what raised was stored";
    }
  }
}

TEST(Files, OfTheLogThatOthersMadeAnewAreSpared) {
  const ScratchFolder folder;
  PrepareFolder(folder.path);
  Told told;
  Recording host = Host(folder.path, "host", told);
  host.Next();
  Query(folder / "ts.db", "PRAGMA wal_checkpoint");
  host.Next();
  fs::remove(folder / "ts.db-wal");
  fs::remove(folder / "ts.db-shm");
  EXPECT_EQ(
      std::system(("sqlite3 '" + (folder / "ts.db").string() + "' \"INSERT INTO ts_schema VALUES (4, '')\"").c_str()),
      0);
  EXPECT_THROW(host.Next(), TsError);
  EXPECT_EQ(Query(folder / "ts.db", "SELECT version FROM ts_schema"), "2\n-3\n4\n");
}

TEST(Files, AreReadableByOwnerAndGroupAtMost) {
  for (const auto& [mask, mode] : {std::pair<mode_t, mode_t>{0, 0640}, {022, 0640}, {027, 0640}, {077, 0600}}) {
    const ScratchFolder folder;
    PrepareFolder(folder.path);
    Told told;
    const mode_t before = umask(mask);
    Recording host = Host(folder.path, "host", told);
    host.Next();
    umask(before);
    for (const char* const file : {"ts.db", "ts.db-wal", "ts.db-shm"}) {
      struct stat status {};
      EXPECT_EQ(stat((folder / file).c_str(), &status), 0) << file;
      EXPECT_EQ(status.st_mode & 0777, mode) << file << " with umask " << mask;
    }
  }
}

}  // namespace

// Whether the host of a run lives, as a reader says it and as the kernel's table of locks shows it.

#include "LocalTsTest.h"
#include "RunStates.h"
#include "support/Process.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <array>
#include <fstream>
#include <set>
#include <sstream>

namespace {

class Hosts : public LocalTsTest {
 protected:
  /// Begins a session in a folder and an execution that does not finish.
  void Run(const std::string& node, const std::string& store = "store") const {
    TSInstance::SetTsalPath((folder / store).string());
    TSInstance::BeginSession();
    Saved(node);
  }
  void MakeStore(const std::string& name) {
    create_directory(folder / name);
    Configure("ts.db", name);
  }
  fs::path LockFile() const { return folder / "store/ts.db-hosts"; }

  std::string Said(const std::string& store = "store") const { return StatesOfRuns(folder / store / "ts.db"); }
  /// The bytes of the lock file that are locked, as the kernel shows them.
  std::string Shown() const {
    struct stat file {};
    stat(LockFile().c_str(), &file);
    std::array<char, 64> id{};
    std::snprintf(id.data(), id.size(), "%02x:%02x:%lu", major(file.st_dev), minor(file.st_dev), file.st_ino);
    std::set<std::string> ranges;
    std::ifstream table("/proc/locks");
    for (std::string line; std::getline(table, line);) {
      std::istringstream words(line);
      std::string number, kind, force, access, process, where, first, last;
      words >> number >> kind >> force >> access >> process >> where >> first >> last;
      if (where == id.data() && kind == "OFDLCK") {
        ranges.insert(first + '-' + last);
      }
    }
    std::string shown;
    for (const std::string& range : ranges) {
      shown += (shown.empty() ? "" : " ") + range;
    }
    return shown;
  }
};

TEST_F(Hosts, AreToldToLiveAsLongAsTheirProcessDoes) {
  const auto nothing = [] {};
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"idles", nothing},
      {"began a session elsewhere", [this] { Run("elsewhere", "other"); }},
      {"opened and closed its lock file", [this] { ContentOf(LockFile()); }},
      {"forked a child that lives on", [] { StartChild(nullptr); }},
      {"started a program that lives on", [] { StartChild("sleep"); }},
  };
  MakeStore("other");
  for (const auto& [what, does] : rows) {
    SCOPED_TRACE(what);
    MakeStore("store");
    Process host([&, &act = does] {
      Run("one");
      act();
    });
    EXPECT_EQ(Said(), "one running");
    EXPECT_EQ(Shown(), "1-1");
    host.Kill();
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Said(), "one stopped");
    remove_all(folder / "store");
  }
}

// Each execution has the state of its own host, and a run lives as long as any of them does.
TEST_F(Hosts, OfOneRunAreToldApart) {
  MakeStore("store");
  Process first([this] { Run("one"); });
  const std::string guid = Recorded("SELECT guid FROM executions", "store/ts.db").substr(0, 36);
  Process second([&, this] {
    Run("two");
    const ActivityExecution parent = Load(Tsid(guid));
    Saved("below", &parent);
  });
  EXPECT_EQ(Said(), "one running (running), two running");
  EXPECT_EQ(Shown(), "1-1 2-2");
  first.Kill();
  EXPECT_EQ(Said(), "one running (running), two running");
  EXPECT_EQ(Shown(), "2-2");
  second.Kill();
  EXPECT_EQ(Said(), "one stopped (stopped), two stopped");
}

TEST_F(Hosts, AreNotKnownWhereTheirLocksAreNot) {
  const std::tuple<const char*, std::function<void()>, const char*, const char*> rows[] = {
      {"moved", [this] { rename(folder / "store", folder / "there"); }, "one running", "one stopped"},
      {"copied", [this] { copy(folder / "store", folder / "there", fs::copy_options::recursive); }, "one unknown",
       "one unknown"},
      {"copied alone",
       [this] {
         create_directory(folder / "there");
         copy(folder / "store/ts.db", folder / "there/ts.db");
         copy(folder / "store/ts.db-wal", folder / "there/ts.db-wal");
       },
       "one unknown", "one unknown"},
      {"without its lock file",
       [this] {
         rename(folder / "store", folder / "there");
         fs::remove(folder / "there/ts.db-hosts");
       },
       "one unknown", "one unknown"},
  };
  for (const auto& [what, act, whileItLives, afterwards] : rows) {
    SCOPED_TRACE(what);
    MakeStore("store");
    const Process host([this] { Run("one"); });
    act();
    EXPECT_EQ(Said("there"), whileItLives);
    host.Kill();
    EXPECT_EQ(Said("there"), afterwards);
    remove_all(folder / "store");
    remove_all(folder / "there");
  }
}

TEST_F(Hosts, RecordWithoutALockAsWithOne) {
  MakeStore("store");
  create_directory(LockFile());
  const Process host([this] { Run("one"); });
  EXPECT_EQ(Said(), "one unknown");
}

}  // namespace

// Whether the host of a run lives, as a reader says it and as the kernel's table of locks shows it.

#include "LocalTsTest.h"
#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>

namespace {

using Velora::Store::NameOf;

/// A process that does something, tells that it is done, and then lives until it is killed.
class Process {
 public:
  template <typename Work>
  explicit Process(const Work& work) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    process = fork();
    if (process == 0) {
      setpgid(0, 0);
      work();
      Tell(ends[1]);
      for (;;) {
        pause();
      }
    }
    close(ends[1]);
    char told = 0;
    EXPECT_EQ(read(ends[0], &told, 1), 1) << "the process ended";
    close(ends[0]);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  /// Ends its children too.
  ~Process() {
    kill(-process, SIGKILL);
    Kill();
  }

  void Kill() const {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }

 private:
  static void Tell(int end) {
    if (write(end, "!", 1) != 1) {
      _exit(1);
    }
  }

  pid_t process = 0;
};

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

  /// "running 1, stopped 2": each run of a store and what is said of it, in the order of recording.
  std::string Said(const std::string& store = "store") const {
    const Velora::Store::Reader reader({Velora::Store::Database::Kind::Sqlite, (folder / store / "ts.db").string()});
    Velora::Store::Hosts hosts(reader);
    std::string said;
    for (const Velora::Store::Run& run : RunsBetween(reader, "", "3")) {
      said += (said.empty() ? "" : ", ") + run.node + ' ' + NameOf(hosts.Of(run).state);
      for (const auto& one : hosts.UnfinishedOf(run)) {
        said += one.key == run.root ? "" : std::string(" (") + NameOf(one.known.state) + ')';
      }
    }
    return said;
  }
  /// The bytes of the lock file that are locked, as the kernel shows them.
  std::string Shown() const {
    struct stat file {};
    stat(LockFile().c_str(), &file);
    std::array<char, 64> id{};
    std::snprintf(id.data(), id.size(), "%02x:%02x:%lu", major(file.st_dev), minor(file.st_dev), file.st_ino);
    std::string shown;
    std::ifstream table("/proc/locks");
    for (std::string line; std::getline(table, line);) {
      std::istringstream words(line);
      std::string number, kind, force, access, process, where, first, last;
      words >> number >> kind >> force >> access >> process >> where >> first >> last;
      if (where == id.data() && kind == "OFDLCK") {
        shown += (shown.empty() ? "" : " ") + first + '-' + last;
      }
    }
    return shown;
  }
};

/// Starts a child that lives on, and waits until it has got so far.
void StartChild(const char* program) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  if (fork() == 0) {
    if (program != nullptr) {
      execlp(program, program, "600", nullptr);
    }
    close(ends[1]);
    for (;;) {
      pause();
    }
  }
  close(ends[1]);
  char none = 0;
  EXPECT_EQ(read(ends[0], &none, 1), 0);
  close(ends[0]);
}

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

}  // namespace

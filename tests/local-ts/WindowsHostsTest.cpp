// Whether the host of a run lives, as a reader says it and as another lock of the same byte shows it.

#include "LocalTsTest.h"
#include "RunStates.h"
#include "support/System.h"

#include <windows.h>

#include <cstdlib>

namespace {

class WindowsHosts : public LocalTsTest {
 protected:
  /// Starts a process that records a run in a folder and lives until it is killed, at most a minute.
  std::intptr_t Host(const std::string& node) const {
    System::SetVariable("VELORA_TEST_NODE", node);
    System::SetVariable("VELORA_TEST_FOLDER", folder.path.string());
    const std::intptr_t host = System::StartCase("WindowsHosts.AreToldToLiveAsLongAsTheirProcessDoes");
    while (!exists(folder / node) && WaitForSingleObject(reinterpret_cast<HANDLE>(host), 10) == WAIT_TIMEOUT) {
    }
    return host;
  }
  /// Whether this process cannot lock a byte of the lock file.
  bool IsLocked(DWORD byte) const {
    const HANDLE file =
        CreateFileW((folder / "store/ts.db-hosts").c_str(), GENERIC_READ,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    const bool locked = LockFile(file, byte, 0, 1, 0) == 0;
    CloseHandle(file);
    return locked;
  }
};

void Kill(std::intptr_t host) {
  TerminateProcess(reinterpret_cast<HANDLE>(host), 9);
  EXPECT_EQ(System::ExitCodeOf(host), 9);
}

/// A host that begins a session elsewhere, too, and opens and closes its lock file.
void Record(const fs::path& folder, const std::string& node) {
  TSInstance::SetTsalPath(folder.string());
  TSInstance::BeginSession();
  Saved(node);
  TSInstance::SetTsalPath((folder / "other").string());
  TSInstance::BeginSession();
  ContentOf(folder / "store/ts.db-hosts");
  std::ofstream(folder / node) << "recorded";
  Sleep(60000);
}

TEST_F(WindowsHosts, AreToldToLiveAsLongAsTheirProcessDoes) {
  if (const char* const node = std::getenv("VELORA_TEST_NODE")) {
    fs::remove(folder.path);
    Record(std::getenv("VELORA_TEST_FOLDER"), node);
    return;
  }
  create_directory(folder / "other");
  Configure("ts.db", "other");
  create_directory(folder / "store");
  Configure("store/ts.db");
  const std::intptr_t first = Host("one");
  const std::intptr_t second = Host("two");
  const auto said = [this] { return StatesOfRuns(folder / "store/ts.db"); };
  EXPECT_EQ(said(), "one running, two running");
  EXPECT_TRUE(IsLocked(1));
  EXPECT_TRUE(IsLocked(2));
  EXPECT_FALSE(IsLocked(3));
  Kill(first);
  EXPECT_EQ(said(), "one stopped, two running");
  EXPECT_FALSE(IsLocked(1));
  EXPECT_TRUE(IsLocked(2));
  Kill(second);
  EXPECT_EQ(said(), "one stopped, two stopped");
}

}  // namespace

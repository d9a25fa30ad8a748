#pragma once

#include <functional>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

/// SQLite's calls to its file system.
enum class Call {
  Open,
  Delete,
  Access,
  FullPath,
  Close,
  Read,
  Write,
  Truncate,
  Sync,
  FileSize,
  Lock,
  Unlock,
  MapShared,
  LockShared,
  UnmapShared,
  Count
};

/// A way for a call to fail.
struct FaultKind {
  const char* name;  ///< as a part of a test's name
  Call call;
  int result;            ///< SQLite's code for it
  bool half = false;     ///< half of what was to be written is written
  bool passing = false;  ///< never lasting

  friend void PrintTo(const FaultKind& kind, std::ostream* out) { *out << kind.name; }  // for GoogleTest
};

/// A file system of SQLite's that passes every call on to the real one, counts them, and fails one when a test wants
/// it. While it is in use, it is what SQLite opens files with. It never syncs: it keeps in memory what would be left
/// without power. Nor does it sleep: it lets the steady clock jump, by a quarter more than it was asked for.
class FaultyFiles {
 public:
  FaultyFiles();
  FaultyFiles(const FaultyFiles&) = delete;
  FaultyFiles& operator=(const FaultyFiles&) = delete;
  ~FaultyFiles();

  static const std::vector<FaultKind>& Kinds();
  /// What SQLite says of a fault.
  static std::string Reason(const FaultKind& kind);

  /// Lets SQLite open files with the real file system; those that are open stay with this one.
  void Disuse();

  /// Lets the n-th call from now on fail, and with `lasting` every one of its kind from there until Heal.
  void Fail(const FaultKind& kind, int n, bool lasting);
  void Heal() { fault = nullptr; }
  /// Whether the fault has come about.
  bool HasFailed() const { return failed; }

  /// Called at each sync, before what it makes durable.
  std::function<void()> beforeSync = [] {};
  /// Whether a sync of this file does what it says.
  std::function<bool(const std::string& path)> syncs = [](const std::string&) { return true; };
  /// What is left of each file when the power goes.
  std::map<std::string, std::string> synced;
  std::function<void()> afterSleep = [] {};

  /// For the calls themselves: a sync of a file, with which the folder of a new one is synced, and a deletion.
  void Keep(const std::string& path);
  void NoteDeletion(const std::string& path, bool folderSynced);
  /// @return the code to fail with, or 0.
  int Meet(Call call);
  bool FailsHalf() const { return fault->half; }

 private:
  void KeepFolder();

  std::set<std::string> deleted;  // where the folder may still say otherwise
  const FaultKind* fault = nullptr;
  int left = 0;
  bool lasting = false;
  bool failed = false;
};

#pragma once

#include <cstdint>
#include <optional>
#include <string>

// A process shows others that it lives by locking a byte of a file. The system takes the lock away when the process
// ends, however it ends, so nobody has to clean up, and no time has to pass before others know.

namespace Velora::System {

/// A lock of one byte of a file, until this process ends. It is not lost when this process closes a descriptor of the
/// file, and the children of the process do not have it.
class ProcessLock {
 public:
  /// Makes the file, empty, if there is none. Reports no error: then nothing is locked.
  /// @param like a file whose rights the new file gets.
  ProcessLock(const std::string& file, const std::string& like, long long byte);
  ProcessLock(const ProcessLock&) = delete;
  ProcessLock& operator=(const ProcessLock&) = delete;
  /// Gives the lock up, unless it is kept.
  ~ProcessLock();

  bool IsHeld() const { return handle != none; }
  /// Identifies the file: a copy has another place, a file that was moved within its file system keeps it.
  const std::string& Place() const { return place; }
  void Keep() { handle = none; }

 private:
  static constexpr std::intptr_t none = -1;

  std::intptr_t handle = none;
  const long long byte;
  std::string place;
};

/// A file with such locks, opened to ask for them. That disturbs nobody.
class ProcessLocks {
 public:
  explicit ProcessLocks(const std::string& file);
  ProcessLocks(const ProcessLocks&) = delete;
  ProcessLocks& operator=(const ProcessLocks&) = delete;
  ~ProcessLocks();

  /// The place of the file; empty if it cannot be opened.
  const std::string& Place() const { return place; }
  /// Why it cannot be opened.
  const std::string& Reason() const { return reason; }
  /// Whether a process holds the lock of a byte; nothing if the system does not tell it.
  std::optional<bool> IsHeld(long long byte) const;

 private:
  std::intptr_t handle = -1;
  std::string place, reason;
};

}  // namespace Velora::System

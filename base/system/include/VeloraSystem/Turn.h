#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Velora::System {

/// A turn in the queue for a file that several threads and processes write. They get their turns in the order in which
/// they asked, and wait without using processor time. A turn ends with the object, or with the process, also if that is
/// killed.
///
/// A turn is not a lock. Only the processes of one user share a queue, and if a turn does not end in time, or the
/// system has no such queues, the others continue without a turn. So the file must be locked as well.
class Turn {
 public:
  /// Waits for the turn.
  /// @param file the file; each file has a queue of its own.
  /// @param longest the time after which it continues without the turn.
  Turn(const std::string& file, std::chrono::milliseconds longest);
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  /// Ends the turn. Must run in the thread that waited for it.
  ~Turn();

  /// Whether this object has the turn.
  bool IsOurs() const { return ours; }

 private:
  std::intptr_t queue = 0;   // as the system calls it
  unsigned short place = 0;  // of this file among those that share a queue's name
  bool ours = false;
};

}  // namespace Velora::System

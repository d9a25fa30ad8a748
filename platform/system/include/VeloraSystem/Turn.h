#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Velora::System {

/// A turn at a file that many threads and processes want to write: each gets it after those that asked before, and
/// waits without using the processor. It ends with the object, or with the process, however that ends.
///
/// It is a courtesy and no lock. Only those of one user stand in one queue, and a turn that does not end in time, or a
/// system without such queues, leaves everybody without one. So what a file needs to stay whole is locked besides.
class Turn {
 public:
  /// Waits for the turn, at most so long.
  Turn(const std::string& file, std::chrono::milliseconds longest);
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  /// To be called in the thread that waited.
  ~Turn();

  /// Whether it came.
  bool IsOurs() const { return ours; }

 private:
  std::intptr_t queue = 0;   // as the system calls it
  unsigned short place = 0;  // of this file among those that share a queue's name
  bool ours = false;
};

}  // namespace Velora::System

#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Quor::TolvaServices::Local {

/// Shuts a socket down when a time is over, unless this is gone before. A client library waits without limit for an
/// answer as long as the network says that it has not ended.
class SocketDeadline {
 public:
  SocketDeadline(int socket, std::chrono::milliseconds longest);
  SocketDeadline(const SocketDeadline&) = delete;
  SocketDeadline& operator=(const SocketDeadline&) = delete;
  ~SocketDeadline();

  bool HasPassed();

 private:
  void Wait(std::chrono::milliseconds longest);

  const int socket;  // a number of its own: the library's may soon be that of another file
  std::mutex mutex;
  std::condition_variable changed;
  bool ended = false;   // guarded by mutex
  bool passed = false;  // guarded by mutex
  std::thread thread;   // last, since it uses all others
};

}  // namespace Quor::TolvaServices::Local

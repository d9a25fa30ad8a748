#include "SocketDeadline.h"

#include <VeloraSystem/Sockets.h>

namespace Quor::TolvaServices::Local {

SocketDeadline::SocketDeadline(int socket, std::chrono::milliseconds longest)
    : socket(Velora::System::DuplicateSocket(socket)),
      thread(Velora::System::StartWithoutSignals([this, longest] { Wait(longest); })) {}

SocketDeadline::~SocketDeadline() {
  {
    const std::lock_guard lock(mutex);
    ended = true;
  }
  changed.notify_one();
  thread.join();
  Velora::System::CloseSocket(socket);
}

bool SocketDeadline::HasPassed() {
  const std::lock_guard lock(mutex);
  return passed;
}

void SocketDeadline::Wait(std::chrono::milliseconds longest) {
  std::unique_lock lock(mutex);
  if (!changed.wait_for(lock, longest, [this] { return ended; })) {
    passed = true;
    Velora::System::ShutDownSocket(socket);
  }
}

}  // namespace Quor::TolvaServices::Local

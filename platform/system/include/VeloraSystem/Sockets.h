#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace Velora::System {

/// Another number for a socket, which is good until CloseSocket, whatever becomes of the first; -1 when there is none.
int DuplicateSocket(int socket);
/// Ends what a socket is connected to: whoever waits for it goes on.
void ShutDownSocket(int socket);
void CloseSocket(int socket);

/// Waits until a socket can be read from, or written to.
/// @return false when the time was over first.
bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest);

/// Starts a thread that takes none of the signals that are meant for the host.
std::thread StartWithoutSignals(std::function<void()> run);

}  // namespace Velora::System

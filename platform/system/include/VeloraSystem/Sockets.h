#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace Velora::System {

/// A second descriptor for a socket. It is valid until CloseSocket, also if the first one is closed. -1 on failure.
int DuplicateSocket(int socket);
/// Shuts the connection of a socket down, so that no thread waits for it any longer.
void ShutDownSocket(int socket);
/// Closes a descriptor that DuplicateSocket returned.
void CloseSocket(int socket);

/// Waits until a socket can be read from or written to.
/// @return false if the time ended first.
bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest);

/// Starts a thread that receives no signals, so that those for the host are handled by its own threads.
std::thread StartWithoutSignals(std::function<void()> run);

}  // namespace Velora::System

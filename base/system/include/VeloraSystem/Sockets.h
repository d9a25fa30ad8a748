#pragma once

#include <chrono>

namespace Velora::System {

/// Shuts the connection of a socket down, so that neither side waits for it any longer.
void ShutDownSocket(int socket);

/// Waits until a socket can be read from or written to.
/// @return false if the time ended first.
bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest);

}  // namespace Velora::System

#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Velora::System {

/// The IP addresses of a host's name, in the order in which to try them.
/// @throws std::runtime_error with the system's words if it finds none.
std::vector<std::string> AddressesOf(const std::string& host);

/// Shuts the connection of a socket down, so that neither side waits for it any longer.
void ShutDownSocket(int socket);

/// Waits until a socket can be read from or written to.
/// @return false if the time ended first.
bool AwaitSocket(int socket, bool toWrite, std::chrono::milliseconds longest);

/// Keeps a socket from the children of this process: programs that it starts do not get it, and a forked child closes
/// it. @return whether that is so.
bool KeepFromChildren(int socket);
/// Must be called before such a socket is closed: its number can then be that of another one.
void ForgetSocket(int socket);

}  // namespace Velora::System

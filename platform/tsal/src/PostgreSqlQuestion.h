#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// Asks a server over a connection of its own, and waits for nothing longer than until a time. The connection has to
/// name the server by an address, since the time to find that out has no limit.
/// @return the first value of the answer; empty for none.
std::string AskUntil(std::chrono::steady_clock::time_point end, const std::string& connection,
                     const std::string& question, const std::vector<std::string>& values);

}  // namespace Quor::TolvaServices::Local

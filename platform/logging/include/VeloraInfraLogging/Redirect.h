#pragma once

#include <VeloraInfraLogging/Logger.h>

#include <functional>
#include <string>

// Only the default logger has this header: a vendor's library, or a host's own, logs in its own way. So a program looks
// for the function when it runs, by its unmangled name, and does without where the library has no such function.

namespace Quor::Velora::Infra::Logging {

enum class Level { Info, Warning, Error };

/// Receives a line: its level, the program or library that writes it, in UTF-8, and its text, any bytes.
using LineReceiver = std::function<void(Level level, const std::string& source, const std::string& message)>;

}  // namespace Quor::Velora::Infra::Logging

/// Gives the lines of the process to a receiver from now on, instead of to standard error or the log file. The logger
/// itself stays the same object: who got it earlier writes to the receiver too.
/// @param receiver is copied. It is called on the threads that write lines, on several at once, while no lock is held.
///        What it raises passes to the writer of the line. If it is empty, lines go to standard error or the log file
///        again.
/// The former receiver is destroyed when the lines that were given to it have returned: on the thread of the last of
/// them, or before this function returns. The one that is still in place when the process ends is destroyed then, so
/// the library with its code must stay loaded.
/// @throws std::bad_alloc, or what the copy of the receiver raises. Nothing has changed then.
extern "C" VELORA_INFRA_LOGGING_API void VeloraInfraLoggingRedirect(
    const Quor::Velora::Infra::Logging::LineReceiver& receiver);

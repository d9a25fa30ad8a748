#pragma once

#include <string>
#include <string_view>

/// The texts that belong to the calling thread. They are freed when the thread ends. None of this takes a lock.
namespace Velora::CInterface::ThisThread {

/// Keeps "FUNCTION: WORDS" as the text of the last error, or a fixed text if there is no memory for that.
void KeepError(std::string_view function, std::string_view words) noexcept;
/// The text of the last error, which ends with a zero byte; empty if there was none.
std::string_view LastError() noexcept;
/// A number that changes with each error of the thread.
unsigned long ErrorCount() noexcept;

/// Keeps the reason of a callback until the callback has returned.
void KeepRaised(std::string_view reason) noexcept;
/// The reason that was kept last, which is forgotten here; empty if there is none.
/// @throws std::bad_alloc if there was no memory to keep it.
std::string TakeRaised();

}  // namespace Velora::CInterface::ThisThread

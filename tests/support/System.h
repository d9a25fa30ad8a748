#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <type_traits>

/// What tests ask of the system, and systems call by different names.
namespace System {

/// Whether any bytes can be the name of a file. On Windows a name is text without certain signs, and a narrow path is
/// UTF-8 to this standard library.
constexpr bool pathsAreBytes = std::is_same_v<std::filesystem::path::value_type, char>;
constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);

/// A path that is written with slashes, as the system writes it.
inline std::filesystem::path Path(const std::filesystem::path& slashes) {
  return std::filesystem::path(slashes).make_preferred();
}

/// @param file what the loader takes: with a separator in it.
/// @throws std::runtime_error with the loader's reason; so does Find.
void* Load(const std::filesystem::path& file);
void* Find(void* library, const char* name);
void Unload(void* library);
/// Whether a library of this file is in memory.
bool IsLoaded(const std::filesystem::path& file);

void SetVariable(const char* name, const std::string& value);
/// Sets TZ. @return whether local clocks are those of that zone now. On Windows they stay as they were when the process
/// began, and Wine takes them from TZ then.
bool SetZone(const std::string& zone);
std::string HostName();
/// Lets the process have an ordinary user's rights, and its own again; false where that cannot be.
bool GiveUpRights();
void TakeRightsBack();
/// Starts a process that runs one case of this test program.
std::intptr_t StartCase(const std::string& name);
/// The exit code of such a process, once it has ended.
int ExitCodeOf(std::intptr_t process);
/// Bytes that the process has allocated and not released.
std::size_t MemoryInUse();

}  // namespace System

#pragma once

#include <cstdint>
#include <string>

namespace Velora::System {

/// Makes an empty file that owner and group can read, where there is none yet. Made without being opened, since closing
/// a file gives up every lock that this process has on it. What is wrong shows when the file is opened. On Windows it
/// does nothing: a file has the access list of its folder there.
void MakeOwnFile(const std::string& path);

/// Which file a path leads to, following links: another one for every file that is there or open at one time, and the
/// default one for none. On Windows always the same one: a file stays there as long as it is open.
struct FileId {
  std::uint64_t device = 0;
  std::uint64_t number = 0;

  bool operator==(const FileId&) const = default;
};
FileId IdOf(const std::string& path);

/// Whether this process may make files in a folder. Makes none that stays.
bool TakesNewFiles(const std::string& folder);

/// The folder of this process's program; empty when the system does not tell it.
std::string ProgramFolder();

/// This computer's name, "unknown" when the system does not tell it.
std::string ComputerName();

/// Which process, in words, has locked a byte of a file for writing: "process 4711 (recorder)", "another thread of this
/// process", or, where the system does not tell, "another process or thread".
std::string LockerOf(const std::string& path, unsigned byte);

}  // namespace Velora::System

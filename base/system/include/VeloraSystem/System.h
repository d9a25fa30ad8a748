#pragma once

#include <cstdint>
#include <string>

namespace Velora::System {

/// Makes an empty file that owner and group can read, if the file does not exist. It does not open the file, because
/// closing a file releases every lock that this process has on it. It reports no error: the later opening of the file
/// does. On Windows it does nothing, because a file gets the access list of its folder there.
void MakeOwnFile(const std::string& path);

/// The identity of a file. All files that exist or are open at one time have different identities.
struct FileId {
  std::uint64_t device = 0;
  std::uint64_t number = 0;

  bool operator==(const FileId&) const = default;
};
/// The identity of the file that a path leads to, with links followed. Default-constructed if there is no file.
FileId IdOf(const std::string& path);
/// The same of a file that SQLite has open. On Windows all such files have the same identity, which costs nothing:
/// nobody can delete or rename them there.
FileId IdOfOpen(const std::string& path);

/// Whether this process can make files in a folder. It leaves no file there.
bool TakesNewFiles(const std::string& folder);

/// The folder of the program of this process; empty if the system does not tell it.
std::string ProgramFolder();

/// The number by which the system knows this process.
long ProcessNumber();

/// The name of this computer; "unknown" if the system does not tell it.
std::string ComputerName();

/// The name of the user of this process on this computer; "unknown" if the system does not tell it.
std::string UserName();

/// Describes the process that has locked a byte of a file for writing: "process 4711 (recorder)", "another thread of
/// this process", or, if the system does not tell it, "another process or thread".
std::string LockerOf(const std::string& path, unsigned byte);

}  // namespace Velora::System

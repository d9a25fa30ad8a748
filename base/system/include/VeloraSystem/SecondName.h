#pragma once

#include <VeloraSystem/Failure.h>

#include <string>

// How a file is put aside under another name, while a new one takes its name. Every operation can throw a Failure.

namespace Velora::System {

/// A second name of a file (a hard link), in the same file system. It is taken away again unless it is kept, or has
/// become the only one.
class SecondName {
 public:
  /// Nothing must have the name. When this returns, the name is on the disk.
  /// @param file its path, without links.
  SecondName(std::string file, std::string name);
  SecondName(const SecondName&) = delete;
  SecondName& operator=(const SecondName&) = delete;
  ~SecondName();

  void Keep() { kept = true; }

 private:
  const std::string file, name;
  bool kept = false;
};

/// Whether another file can take the name of a file that is open. On Windows none can.
bool OpenFilesGiveUpNames();

/// Gives a file the owner, group and permissions of another. On Windows it has the access list of its folder.
void MakeLike(const std::string& file, const std::string& other);

/// Whether nobody may write a file. Root can, all the same.
bool IsReadOnly(const std::string& file);
/// Takes the right to write a file away from everybody. When this returns, that is on the disk.
void MakeReadOnly(const std::string& file);

}  // namespace Velora::System

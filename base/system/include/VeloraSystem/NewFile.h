#pragma once

#include <VeloraSystem/RegularFile.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace Velora::System {

/// A file that is written before it gets its name. Every operation can throw a Failure.
class NewFile {
 public:
  /// Makes an empty file. Nothing must have its name, not even a link.
  /// @param mode its permissions, from which the umask of the process is taken away. On Windows the file gets the
  /// access list of its folder.
  NewFile(std::string path, unsigned mode);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  /// Removes the file if it was not moved.
  ~NewFile();

  const std::string& Path() const { return path; }
  /// Appends to the file.
  void Write(std::string_view content) const;

  /// What becomes of a file that already has the name.
  enum class Existing { Keep, Replace };
  /// Gives the file another name in its folder. When this returns, file and name are on the disk.
  void MoveTo(const std::string& name, Existing existing);

 private:
  static File Make(const std::string& path, unsigned mode);
  static void Sync(std::FILE* file);
  static void Move(const std::string& path, const std::string& name, Existing existing);
  static void Remove(const std::string& path);

  std::string path;
  File file;
};

}  // namespace Velora::System

#pragma once

#include <VeloraSystem/NewFile.h>

#include <string>
#include <string_view>

namespace Velora::Ts {

/// A file that gets its name only when it is complete. Until then it has a random name beside it that ends in ".part";
/// if the program is killed, that file stays.
class FreshFile {
 public:
  using Existing = System::NewFile::Existing;

  /// @param words what errors call it: "file 'run.csv'".
  /// @param mode its permissions, from which the umask of the process is taken away.
  FreshFile(std::string words, const std::string& target, unsigned mode);

  /// The random name.
  const std::string& Path() const { return file.Path(); }
  /// Appends to the file.
  void Write(std::string_view content) const;
  /// Gives the file its name. Nothing can be written then. When this returns, file and name are on the disk.
  /// @throws Error when an existing file is to be kept.
  void TakeName(Existing existing);

 private:
  const std::string words, target;
  System::NewFile file;
};

}  // namespace Velora::Ts

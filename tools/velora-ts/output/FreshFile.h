#pragma once

#include <string>

#include <sys/types.h>

namespace Velora::Ts {

/// A file that gets its name only when it is complete. Until then it has a random name beside it that ends in ".part";
/// if the program is killed, that file stays.
class FreshFile {
 public:
  /// @param mode its permissions, from which the umask of the process is taken away.
  FreshFile(std::string target, mode_t mode);
  FreshFile(const FreshFile&) = delete;
  FreshFile& operator=(const FreshFile&) = delete;
  /// Removes the file if it has not got its name.
  ~FreshFile();

  /// The random name.
  const std::string& Path() const { return path; }
  /// Appends to the file.
  void Write(const std::string& content) const;

  /// What becomes of a file that already has the name.
  enum class Existing { Keep, Replace };
  /// Gives the file its name. When this returns, file and name are on the disk.
  /// @throws Error when an existing file is to be kept.
  void TakeName(Existing existing);

 private:
  [[noreturn]] void Fail() const;
  bool Rename(Existing existing) const;

  const std::string target;
  std::string path;
  int file = -1;
};

}  // namespace Velora::Ts

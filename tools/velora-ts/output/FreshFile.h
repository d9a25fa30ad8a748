#pragma once

#include <string>

#include <sys/types.h>

namespace Velora::Ts {

/// A file that gets its name when it is whole. Until then it lies beside that, under a name that nobody can know
/// before; what a killed program leaves there ends in ".part", and is in nobody's way.
class FreshFile {
 public:
  /// @param mode who may read it, less what the process's mask takes away.
  FreshFile(std::string target, mode_t mode);
  FreshFile(const FreshFile&) = delete;
  FreshFile& operator=(const FreshFile&) = delete;
  /// Removes the file unless it got its name.
  ~FreshFile();

  /// Where it lies until then.
  const std::string& Path() const { return path; }
  void Write(const std::string& content) const;
  /// Gives it its name, on the disk when this returns.
  /// @throws Error, without Replace, when there is a file of this name by now.
  enum class Existing { Keep, Replace };
  void TakeName(Existing existing);

 private:
  [[noreturn]] void Fail() const;
  bool Rename(Existing existing) const;

  const std::string target;
  std::string path;
  int file = -1;
};

}  // namespace Velora::Ts

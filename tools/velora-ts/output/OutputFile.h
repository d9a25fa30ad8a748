#pragma once

#include "output/FreshFile.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// With which pages begin.
inline constexpr const char* beginningOfPages = "<!DOCTYPE html>";

/// A file that a user names: complete under its name, or not there at all. What is no regular file, as /dev/stdout, is
/// written as it is. It replaces no file that has something else than such a command wrote, as a store or a private
/// key.
class OutputFile {
 public:
  /// @param kind what errors call it: "page", "file".
  /// @param beginning with which everything begins that is written here: what is there already and begins with
  /// anything else is not replaced.
  /// @throws Error when it cannot be written, or not be replaced. The other operations throw Error when it cannot be
  /// written.
  OutputFile(const std::string& kind, const std::string& path, const std::string& beginning);

  void Write(std::string_view text);
  /// Gives the file its name.
  void Finish();
  std::size_t Bytes() const { return bytes; }

 private:
  void Expect(bool good) const;

  const std::string words;
  std::optional<FreshFile> file;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> device{nullptr, &std::fclose};
  std::size_t bytes = 0;
};

}  // namespace Velora::Ts

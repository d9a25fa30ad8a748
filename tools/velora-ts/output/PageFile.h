#pragma once

#include "output/FreshFile.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// The file of a page: complete under its name, or not there at all. What is no regular file is written as it is.
class PageFile {
 public:
  /// @throws Error when it cannot be written; so do the other operations.
  explicit PageFile(const std::string& path);

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

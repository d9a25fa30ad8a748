#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// The file of a page: complete under its name, or not there at all.
class PageFile {
 public:
  /// @throws Error when it cannot be written; so do the other operations.
  explicit PageFile(const std::string& path);
  PageFile(const PageFile&) = delete;
  PageFile& operator=(const PageFile&) = delete;
  ~PageFile();

  void Write(std::string_view text);
  /// Gives the file its name.
  void Finish();
  std::size_t Bytes() const { return bytes; }

 private:
  void Expect(bool good) const;

  const std::string path;
  const std::string target;  // what a link leads to, so that it stays one
  std::string fresh;         // what is written to
  std::unique_ptr<FILE, int (*)(FILE*)> stream{nullptr, &std::fclose};
  std::size_t bytes = 0;
};

}  // namespace Velora::Ts

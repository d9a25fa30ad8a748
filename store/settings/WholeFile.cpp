#include "store/settings/WholeFile.h"

#include <VeloraSystem/RegularFile.h>
#include "store/Error.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace Velora::Store {

std::string ReadWholeFile(const std::string& path, std::uintmax_t limit) {
  const auto fail = [&path](const std::string& reason) {
    throw Error("file '" + path + "' cannot be read: " + reason);
  };
  if (path.find('\0') != std::string::npos) {
    fail("its name has a zero byte");  // the system would ignore the rest of the name
  }
  if (const std::string kind = System::KindOfNoFile(path); !kind.empty()) {
    fail("it is " + kind + "; expected a regular file");
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(System::OpenRegularFile(path), &std::fclose);
  if (!file) {
    fail(std::generic_category().message(errno) + "; expected a regular file that can be read");
  }
  std::string content;
  std::array<char, 16384> block;
  while (const std::size_t read = std::fread(block.data(), 1, block.size(), file.get())) {
    content.append(block.data(), read);
    if (content.size() > limit) {  // counts what was read, because a file can grow
      fail("it is larger than expected: at most " + std::to_string(limit) + " bytes");
    }
  }
  if (std::ferror(file.get()) != 0) {
    fail(std::generic_category().message(errno));
  }
  return content;
}

}  // namespace Velora::Store

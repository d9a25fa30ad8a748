#include "store/settings/WholeFile.h"

#include <VeloraSystem/Path.h>
#include <VeloraSystem/RegularFile.h>
#include "store/Error.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace Velora::Store {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw Error("file '" + path + "' cannot be read: " + reason);
}

System::File Open(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    Fail(path, "its name has a zero byte");  // the system would ignore the rest of the name
  }
  if (const std::string kind = System::KindOfNoFile(System::PathOf(path)); !kind.empty()) {
    Fail(path, "it is " + kind + "; expected a regular file");
  }
  try {
    return System::OpenRegularFile(path);
  } catch (const System::Failure& failure) {
    Fail(path, std::string(failure.what()) + "; expected a regular file that can be read");
  }
}

}  // namespace

std::string ReadWholeFile(const std::string& path, std::uintmax_t limit) {
  const System::File file = Open(path);
  std::string content;
  std::array<char, 16384> block;
  while (const std::size_t read = std::fread(block.data(), 1, block.size(), file.get())) {
    content.append(block.data(), read);
    if (content.size() > limit) {  // counts what was read, because a file can grow
      Fail(path, "it is larger than expected: at most " + std::to_string(limit) + " bytes");
    }
  }
  if (std::ferror(file.get()) != 0) {
    Fail(path, std::generic_category().message(errno));
  }
  return content;
}

}  // namespace Velora::Store

#include "WholeFile.h"

#include <TSAL/Error.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Quor::TolvaServices::Local {

std::string ReadWholeFile(const std::string& path, std::uintmax_t limit) {
  const auto fail = [&path](const std::string& reason) {
    throw TsError("file '" + path + "' cannot be read: " + reason);
  };
  if (path.find('\0') != std::string::npos) {
    fail("its name has a zero byte");  // the system would open the file that the part before it names
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    fail("it is a folder");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string content;
  for (std::array<char, 16384> block; file.good();) {
    file.read(block.data(), block.size());
    content.append(block.data(), static_cast<std::size_t>(file.gcount()));
    if (content.size() > limit) {
      fail("it is larger than expected: at most " + std::to_string(limit) + " bytes");
    }
  }
  if (!file.is_open() || file.bad()) {
    fail(std::generic_category().message(errno));
  }
  return content;
}

}  // namespace Quor::TolvaServices::Local

#include "WholeFile.h"

#include <TSAL/Error.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Quor::TolvaServices::Local {

std::string ReadWholeFile(const std::string& path, std::uintmax_t limit) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw TsError("file '" + path + "' cannot be read: it is a folder");
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > limit) {
    throw TsError("file '" + path + "' is larger than expected: " + std::to_string(size) + " bytes, at most " +
                  std::to_string(limit));
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file.is_open() || file.bad()) {
    throw TsError("file '" + path + "' cannot be read: " + std::strerror(errno));
  }
  return content;
}

}  // namespace Quor::TolvaServices::Local

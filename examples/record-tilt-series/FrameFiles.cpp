#include "FrameFiles.h"

#include <system_error>

bool FramesOnDisk(const std::string& subFramePath, const std::filesystem::path& folder) {
  const std::string name = subFramePath.substr(subFramePath.find_last_of("/\\") + 1);  // Windows or not
  std::error_code unreadable;  // ignored: the file counts as missing
  return !name.empty() && (std::filesystem::is_regular_file(folder / subFramePath, unreadable) ||
                           std::filesystem::is_regular_file(folder / name, unreadable));
}

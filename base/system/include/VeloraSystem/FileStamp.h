#pragma once

#include <cstdint>
#include <string>

namespace Velora::System {

/// What differs after a file was written or replaced, mostly: two writings within a tick of the system's clock can look
/// as one. It is asked without the content and the locks of the file, and costs next to nothing.
struct FileStamp {
  std::uint64_t file = 0, size = 0, writtenAt = 0;  ///< All 0 if there is no file.

  bool operator==(const FileStamp&) const = default;
};

FileStamp StampOf(const std::string& path);

}  // namespace Velora::System

#include <VeloraSystem/RegularFile.h>

#include <system_error>

namespace Velora::System {

std::string KindOfNoFile(const std::filesystem::path& path) {
  using std::filesystem::file_type;
  std::error_code shownWhenOpened;
  switch (std::filesystem::status(path, shownWhenOpened).type()) {
    case file_type::directory:
      return "a folder";
    case file_type::fifo:
      return "a FIFO";
    case file_type::socket:
      return "a socket";
    case file_type::block:
    case file_type::character:
      return "a device";
    default:
      return "";
  }
}

}  // namespace Velora::System

#include <VeloraSystem/NewFile.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace Velora::System {

NewFile::NewFile(std::string path, unsigned mode) : path(std::move(path)), file(Make(this->path, mode)) {}

NewFile::~NewFile() {
  file.reset();
  if (!path.empty()) {
    Remove(path);
  }
}

void NewFile::Write(std::string_view content) const {
  if (std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()) {
    throw Failure(std::generic_category().message(errno));
  }
}

void NewFile::MoveTo(const std::string& name, Existing existing) {
  if (std::fflush(file.get()) != 0) {
    throw Failure(std::generic_category().message(errno));
  }
  Sync(file.get());
  file.reset();
  Move(path, name, existing);
  path.clear();
}

}  // namespace Velora::System

#include "WindowsOpen.h"
#include "WindowsPath.h"
#include "WindowsReason.h"
#include "WindowsText.h"

#include <VeloraSystem/SecondName.h>

#include <utility>

namespace Velora::System {
namespace {

void Expect(BOOL done) {
  if (done == 0) {
    throw Failure(LastReason());
  }
}

}  // namespace

SecondName::SecondName(std::string file, std::string name) : file(std::move(file)), name(std::move(name)) {
  Expect(CreateHardLinkW(WholePath(Wide(this->name)).c_str(), WholePath(Wide(this->file)).c_str(), nullptr));
}

bool OpenFilesGiveUpNames() { return false; }

void MakeLike(const std::string& /*file*/, const std::string& /*other*/) {}

void MakeReadOnly(const std::string& file) {
  const std::wstring path = WholePath(Wide(file));
  const DWORD attributes = GetFileAttributesW(path.c_str());
  Expect(attributes != INVALID_FILE_ATTRIBUTES ? TRUE : FALSE);
  Expect(SetFileAttributesW(path.c_str(), attributes | FILE_ATTRIBUTE_READONLY));
}

}  // namespace Velora::System

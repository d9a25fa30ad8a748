#include "WindowsText.h"

#include <VeloraSystem/Narrow.h>

#include <windows.h>

#include <algorithm>

namespace Velora::System {
namespace {

std::wstring WideIn(UINT codePage, DWORD flags, const std::string& text) {
  const auto convert = [&](wchar_t* to, int room) {
    return MultiByteToWideChar(codePage, flags, text.data(), static_cast<int>(text.size()), to, room);
  };
  std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
  convert(wide.data(), static_cast<int>(wide.size()));
  return wide;
}

}  // namespace

std::string FromNarrow(const std::string& path) {
  const bool isUtf8 = !WideIn(CP_UTF8, MB_ERR_INVALID_CHARS, path).empty();
  return isUtf8 ? path : Utf8(WideIn(AreFileApisANSI() != 0 ? CP_ACP : CP_OEMCP, 0, path));
}

bool IsNarrow(const std::string& path) {
  const std::wstring letters = Wide(path);
  return std::all_of(letters.begin(), letters.end(), [](wchar_t letter) { return letter <= 0xFF; });
}

}  // namespace Velora::System

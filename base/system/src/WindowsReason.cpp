#include "WindowsReason.h"

#include "WindowsText.h"

#include <windows.h>

#include <array>

namespace Velora::System {

std::string ReasonOf(unsigned long code) {
  if (code == ERROR_SHARING_VIOLATION) {
    return "another program has it open and lets nobody else; expected it to be closed there";
  }
  std::array<wchar_t, 512> words{};
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                      words.data(), words.size(), nullptr);
  const std::wstring_view text(words.data(), length);
  const std::size_t end = text.find_last_not_of(L". \r\n");
  return end == std::wstring_view::npos ? "error " + std::to_string(code) : Utf8(text.substr(0, end + 1));
}

std::string LastReason() { return ReasonOf(GetLastError()); }

}  // namespace Velora::System

#include <VeloraSystem/System.h>

#include <windows.h>

#include <array>

namespace Velora::System {

void MakeOwnFile(const std::string& /*path*/) {}

std::string ComputerName() {
  std::array<char, 256> buffer{};
  DWORD size = buffer.size();
  return GetComputerNameExA(ComputerNameDnsHostname, buffer.data(), &size) != 0 && size > 0 ? buffer.data() : "unknown";
}

std::string LockerOf(const std::string& /*path*/, unsigned /*byte*/) { return "another process or thread"; }

}  // namespace Velora::System

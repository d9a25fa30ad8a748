#include "store/database/ClientFunction.h"
#include "store/database/DatabaseError.h"

#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraSystem/Path.h>

#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace Velora::Store {
namespace {

/// The folder of the program or library that has this code.
std::filesystem::path OwnFolder() {
  static const char here = 0;
  HMODULE own = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&here), &own);
  std::wstring file(32768, L'\0');
  file.resize(GetModuleFileNameW(own, file.data(), static_cast<DWORD>(file.size())));
  return std::filesystem::path(file).parent_path();
}

/// As the system looks for a library that is linked: first beside the one that uses it.
std::string Place() {
  const std::filesystem::path beside = OwnFolder() / "libpq.dll";
  return exists(beside) ? System::TextOf(beside) : "libpq.dll";
}

}  // namespace

void* FindClientFunction(const char* name) try {
  static const System::LoadedLibrary library(Place());
  return reinterpret_cast<void*>(library.Find<void()>(name));
} catch (const std::runtime_error& reason) {
  throw NotReachable(std::string("PostgreSQL's client library cannot be used: ") + reason.what() +
                     "; expected libpq.dll of PostgreSQL 14 or newer beside this program");
}

}  // namespace Velora::Store

#include "WindowsReason.h"
#include "WindowsText.h"

#include <VeloraSystem/ShellCommand.h>

#include <windows.h>

#include <array>
#include <string_view>
#include <vector>

namespace Velora::System {
namespace {

/// A handle that is closed with its owner.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) {
      CloseHandle(handle);
    }
  }
  HANDLE Get() const { return handle; }

 private:
  const HANDLE handle;
};

[[noreturn]] void Fail() { throw Failure("the shell 'cmd.exe' cannot be run: " + LastReason()); }

// cmd.exe puts the value in the place of %NAME% before it looks where one command ends and another begins.
std::wstring Harmless(const std::string& value) {
  std::wstring wide = Wide(value);
  for (wchar_t& sign : wide) {
    if (std::wstring_view(L"\"&|<>^%!()").find(sign) != std::wstring_view::npos) {
      sign = L'_';
    }
  }
  return wide;
}

struct IgnoringCase {
  bool operator()(const std::wstring& one, const std::wstring& other) const {
    return CompareStringOrdinal(one.c_str(), -1, other.c_str(), -1, TRUE) == CSTR_LESS_THAN;
  }
};

/// The block that the system takes: sorted, each variable with a zero behind it, and one more at the end.
std::wstring EnvironmentWith(const std::map<std::string, std::string>& variables) {
  std::map<std::wstring, std::wstring, IgnoringCase> all;
  wchar_t* const own = GetEnvironmentStringsW();
  for (const wchar_t* at = own; at != nullptr && *at != L'\0';) {
    const std::wstring_view text(at);
    const std::size_t sign = text.find(L'=', 1);  // the names of the system's own begin with "="
    if (sign != std::wstring_view::npos) {
      all[std::wstring(text.substr(0, sign))] = text.substr(sign + 1);
    }
    at += text.size() + 1;
  }
  FreeEnvironmentStringsW(own);
  for (const auto& [name, value] : variables) {
    all[Wide(name)] = Harmless(value);
  }
  std::wstring block;
  for (const auto& [name, value] : all) {
    block += name + L'=' + value + L'\0';
  }
  return block + L'\0';
}

std::wstring Shell() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return std::wstring(folder.data(), length) + L"\\cmd.exe";
}

/// A handle that a child can have.
HANDLE ForChild(HANDLE handle) {
  HANDLE copy = nullptr;
  const HANDLE self = GetCurrentProcess();
  return DuplicateHandle(self, handle, self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS) ? copy : nullptr;
}

/// Begins the shell, which waits, with these handles and no others.
PROCESS_INFORMATION Begin(const std::string& command, std::wstring environment) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const Handle nothing(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                   OPEN_EXISTING, 0, nullptr));
  const Handle errors(ForChild(GetStdHandle(STD_ERROR_HANDLE)));
  const HANDLE written = errors.Get() != nullptr ? errors.Get() : nothing.Get();
  std::array<HANDLE, 2> handles{nothing.Get(), written};
  std::array<std::byte, 256> place{};
  SIZE_T size = place.size();
  STARTUPINFOEXW start{};
  start.StartupInfo.cb = sizeof(start);
  start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  start.StartupInfo.hStdInput = nothing.Get();
  start.StartupInfo.hStdOutput = start.StartupInfo.hStdError = written;
  start.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(place.data());
  const DWORD flags =
      CREATE_UNICODE_ENVIRONMENT | CREATE_NEW_PROCESS_GROUP | CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT;
  const std::wstring shell = Shell();
  std::wstring line = L"cmd.exe /d /s /c \"" + Wide(command) + L'"';
  PROCESS_INFORMATION begun{};
  if (!InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &size) ||
      !UpdateProcThreadAttribute(start.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                 (written == nothing.Get() ? 1 : 2) * sizeof(HANDLE), nullptr, nullptr) ||
      !CreateProcessW(shell.c_str(), line.data(), nullptr, nullptr, TRUE, flags, environment.data(), nullptr,
                      &start.StartupInfo, &begun)) {
    Fail();
  }
  DeleteProcThreadAttributeList(start.lpAttributeList);
  return begun;
}

}  // namespace

// A job holds the shell and all that it begins.
struct ShellCommand::Process {
  explicit Process(const PROCESS_INFORMATION& begun) : shell(begun.hProcess), job(CreateJobObjectW(nullptr, nullptr)) {
    const Handle thread(begun.hThread);
    AssignProcessToJobObject(job.Get(), shell.Get());
    ResumeThread(thread.Get());
  }

  const Handle shell, job;
};

ShellCommand::ShellCommand(const std::string& command, const std::map<std::string, std::string>& variables)
    : process(std::make_unique<Process>(Begin(command, EnvironmentWith(variables)))) {}

ShellCommand::~ShellCommand() { Kill(); }

std::optional<int> ShellCommand::Result() {
  DWORD code = 0;
  if (WaitForSingleObject(process->shell.Get(), 0) != WAIT_OBJECT_0 ||
      !GetExitCodeProcess(process->shell.Get(), &code)) {
    return std::nullopt;
  }
  return static_cast<int>(code);
}

void ShellCommand::Kill() {
  if (!Result()) {
    TerminateJobObject(process->job.Get(), 1);
    TerminateProcess(process->shell.Get(), 1);
    WaitForSingleObject(process->shell.Get(), INFINITE);
  }
}

}  // namespace Velora::System

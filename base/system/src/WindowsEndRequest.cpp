#include "WindowsReason.h"

#include <VeloraSystem/EndRequest.h>
#include <VeloraSystem/Failure.h>

#include <windows.h>

namespace Velora::System {
namespace {

HANDLE told = nullptr;

// The system calls it on a thread of its own. When the console is closed, or the computer is shut down, the process
// ends when this returns; so it leaves a moment to the end of main(), and the system ends what takes too long.
BOOL WINAPI Tell(DWORD event) {
  const bool isSecond = WaitForSingleObject(told, 0) == WAIT_OBJECT_0;
  SetEvent(told);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
    return isSecond ? FALSE : TRUE;
  }
  Sleep(INFINITE);
  return TRUE;
}

}  // namespace

struct EndRequest::Place {};

EndRequest::EndRequest() {
  told = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (told == nullptr) {
    throw Failure("the process cannot listen to Ctrl-C: " + LastReason());
  }
  SetConsoleCtrlHandler(&Tell, TRUE);
}

EndRequest::~EndRequest() {
  SetConsoleCtrlHandler(&Tell, FALSE);
  CloseHandle(told);
}

bool EndRequest::Await(std::chrono::milliseconds longest) const {
  return WaitForSingleObject(told, static_cast<DWORD>(longest.count())) == WAIT_OBJECT_0;
}

}  // namespace Velora::System

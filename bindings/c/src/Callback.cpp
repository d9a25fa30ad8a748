#include "Callback.h"

#include "ModuleFile.h"
#include "ThisThread.h"

#include <VeloraSystem/LoadedLibrary.h>

#include <atomic>
#include <new>
#include <utility>

namespace Velora::CInterface {
namespace {

std::atomic<bool> isOver = false;

/// @return the reason that was kept on this thread, if there is one and was memory for it.
std::string TakeAside() noexcept {
  try {
    return ThisThread::TakeRaised();
  } catch (const std::bad_alloc&) {
    return {};
  }
}

}  // namespace

bool CallbacksAreOver() noexcept { return isOver; }

void EndCallbacks() noexcept { isOver = true; }

void StayLoaded() { static const System::LoadedLibrary stays(ModuleFile(&isOver)); }

CallbackScope::CallbackScope(const char* callback)
    : callback(callback), reasonOutside(TakeAside()), errorsBefore(ThisThread::ErrorCount()) {
  if (CallbacksAreOver()) {
    throw Failure(VELORA_TS_RAISED, std::string("the process ends; the callback ") + callback + " was not called");
  }
}

CallbackScope::~CallbackScope() {
  TakeAside();
  if (!reasonOutside.empty()) {
    ThisThread::KeepRaised(reasonOutside);
  }
}

void CallbackScope::Check(velora_ts_status returned) const {
  if (returned == VELORA_TS_OK) {
    return;
  }
  std::string reason = ThisThread::TakeRaised();
  if (reason.empty()) {
    reason = std::string("the callback ") + callback + " returned " + std::to_string(returned) +
             " without a reason by velora_ts_raise";
    if (ThisThread::ErrorCount() != errorsBefore) {
      reason.append("; ").append(ThisThread::LastError());
    }
  }
  throw Failure(VELORA_TS_RAISED, std::move(reason));
}

}  // namespace Velora::CInterface

velora_ts_status velora_ts_raise(const char* text, size_t size) {
  std::string_view reason = "velora_ts_raise got no text: it is null, and its size is not 0";
  if (text != nullptr) {
    reason = size == VELORA_TS_ZERO_TERMINATED ? std::string_view(text) : std::string_view(text, size);
  } else if (size == 0) {
    reason = {};
  }
  Velora::CInterface::ThisThread::KeepRaised(reason);
  return VELORA_TS_RAISED;
}

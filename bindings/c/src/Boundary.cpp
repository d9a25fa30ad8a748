#include "Boundary.h"

#include "Immortal.h"
#include "ThisThread.h"

#include <pthread.h>

#include <chrono>
#include <mutex>
#include <new>
#include <thread>

namespace Velora::CInterface {
namespace {

Immortal<std::recursive_mutex> processLock;
/// The thread that ends the library; none before. The lock guards it.
Immortal<std::thread::id> lastInside;

#ifdef _WIN32  // which ends all other threads first, also one that holds the lock
constexpr std::chrono::seconds longestWait(0);
#else
constexpr std::chrono::seconds longestWait(5);
#endif

}  // namespace

Uncancelled::Uncancelled() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before); }

Uncancelled::~Uncancelled() { pthread_setcancelstate(before, nullptr); }

Inside::Inside() {
  processLock.object.lock();
  while (lastInside.object != std::thread::id() && lastInside.object != std::this_thread::get_id()) {
    processLock.object.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    processLock.object.lock();
  }
}

Inside::~Inside() { processLock.object.unlock(); }

bool StayInsideAlone() noexcept {
  const auto end = std::chrono::steady_clock::now() + longestWait;
  while (!processLock.object.try_lock()) {
    if (std::chrono::steady_clock::now() >= end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  lastInside.object = std::this_thread::get_id();
  processLock.object.unlock();
  return true;
}

velora_ts_status StatusOfException(const char* function) noexcept {
  try {
    throw;
  } catch (const Failure& failure) {
    ThisThread::KeepError(function, failure.words);
    return failure.status;
  } catch (const std::bad_alloc&) {
    ThisThread::KeepError(function, "there is no memory");
    return VELORA_TS_NO_MEMORY;
  } catch (const std::exception& reason) {
    ThisThread::KeepError(function, reason.what());
  } catch (...) {
    ThisThread::KeepError(function, "an exception of an unknown type");
  }
  return VELORA_TS_RAISED;
}

}  // namespace Velora::CInterface

const char* velora_ts_last_error(size_t* size) {
  const std::string_view text = Velora::CInterface::ThisThread::LastError();
  if (size != nullptr) {
    *size = text.size();
  }
  return text.data();
}

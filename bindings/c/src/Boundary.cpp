#include "Boundary.h"

#include "HostsGateway.h"
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
/// The thread that came inside last, and its scopes. The lock guards them, and whether a session was begun.
Immortal<std::thread::id> holder;
int scopes = 0;
bool hasSession = false;
/// Changes only in a forked child, while it has one thread.
bool isForkedTooLate = false;

#ifdef _WIN32  // which ends all other threads first, also one that holds the lock
constexpr std::chrono::seconds longestWait(0);
#else
constexpr std::chrono::seconds longestWait(5);
#endif

#ifndef _WIN32
// No handler waits for the lock before a fork: the one inside can wait for what the forking thread has locked by then.
void AfterForkInChild() {
  isForkedTooLate = isForkedTooLate || hasSession || scopes != 0;
  new (&processLock.object) std::recursive_mutex;
  scopes = holder.object == std::this_thread::get_id() ? scopes : 0;
  for (int scope = 0; scope < scopes; ++scope) {  // of callbacks that are running, if one forked
    processLock.object.lock();
  }
  lastInside.object = {};
}

// The system forgets the handler when the library is unloaded.
[[maybe_unused]] const int registered = pthread_atfork(nullptr, nullptr, &AfterForkInChild);
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
  holder.object = std::this_thread::get_id();
  ++scopes;
}

Inside::~Inside() {
  --scopes;
  processLock.object.unlock();
}

void SessionBegins() noexcept { hasSession = hasSession || HostsGateway() == nullptr; }

void ExpectNotForkedTooLate() {
  if (isForkedTooLate) {
    throw Misuse(
        "this process was forked after a session began, or during a call; expected a fork before the first "
        "session, or another program in the child");
  }
}

bool StayInsideAlone() noexcept {
  if (isForkedTooLate) {
    return false;
  }
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

#include "serving/http/ConnectionThreads.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace Velora::Http {

namespace {

constexpr std::chrono::milliseconds betweenTries(20);

}  // namespace

void ConnectionThreads::enqueue(std::function<void()> answer) {
  std::unique_lock lock(mutex);
  JoinEnded(lock);
  while (threads.size() >= most || !Start(answer)) {
    connections.EndOne();
    oneEnded.wait_for(lock, betweenTries, [this] { return !ended.empty(); });
    JoinEnded(lock);
  }
}

void ConnectionThreads::shutdown() {
  std::unique_lock lock(mutex);
  while (!threads.empty()) {
    connections.EndAll();  // again, because a thread may just have begun
    oneEnded.wait_for(lock, betweenTries, [this] { return !ended.empty(); });
    JoinEnded(lock);
  }
}

void ConnectionThreads::JoinEnded(std::unique_lock<std::mutex>& lock) {
  Threads joined;
  for (const Threads::iterator thread : std::exchange(ended, {})) {
    joined.splice(joined.end(), threads, thread);
  }
  lock.unlock();
  for (std::thread& thread : joined) {
    thread.join();
  }
  lock.lock();
}

// @return false when the system gives no further thread.
bool ConnectionThreads::Start(const std::function<void()>& answer) {
  const Threads::iterator place = threads.emplace(threads.end());
  try {
    *place = std::thread([this, answer, place] {
      answer();
      const std::lock_guard lock(mutex);
      ended.push_back(place);
      oneEnded.notify_one();
    });
    return true;
  } catch (const std::system_error&) {
    threads.erase(place);
    return false;
  }
}

}  // namespace Velora::Http

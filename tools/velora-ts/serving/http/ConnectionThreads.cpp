#include "serving/http/ConnectionThreads.h"

#include <chrono>
#include <exception>

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
  while (!threads.empty() || !ended.empty()) {
    connections.EndAll();  // again, because a thread may just have begun
    oneEnded.wait_for(lock, betweenTries, [this] { return !ended.empty(); });
    JoinEnded(lock);
  }
}

void ConnectionThreads::JoinEnded(std::unique_lock<std::mutex>& lock) {
  Threads joined;
  joined.swap(ended);
  lock.unlock();
  for (std::thread& thread : joined) {
    thread.join();
  }
  lock.lock();
}

// @return false when the system gives no further thread, or no memory for it.
bool ConnectionThreads::Start(const std::function<void()>& answer) {
  try {
    Threads one(1);
    const Threads::iterator place = one.begin();
    *place = std::thread([this, answer, place] {
      answer();
      const std::lock_guard lock(mutex);
      ended.splice(ended.end(), threads, place);
      oneEnded.notify_one();
    });
    threads.splice(threads.end(), one);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace Velora::Http

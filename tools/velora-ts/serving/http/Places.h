#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace Velora::Http {

/// A number of places for answers of a kind. Any thread may use them.
class Places {
 public:
  /// @param waiting how many may wait for a place.
  Places(std::size_t places, std::size_t waiting) : mostTaken(places), mostWaiting(waiting) {}

  /// Has a place while it exists.
  class Taken {
   public:
    /// Waits for a place. @throws Refusal with status 503 when too many wait, or for too long, or at the end.
    Taken(Places& places, std::chrono::milliseconds longest);
    Taken(const Taken&) = delete;
    Taken& operator=(const Taken&) = delete;
    ~Taken();

   private:
    Places& places;
  };

  /// Lets nobody wait any longer.
  void End();

 private:
  const std::size_t mostTaken, mostWaiting;
  std::mutex mutex;
  std::condition_variable changed;
  std::size_t taken = 0, waiting = 0;
  bool ended = false;
};

}  // namespace Velora::Http

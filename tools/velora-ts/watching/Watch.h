#pragma once

#include "store/settings/Settings.h"
#include "watching/Now.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Velora::Ts {

/// A store to watch.
struct WatchedStore {
  int number = 1;  ///< From 1.
  std::string folder;
  Store::Settings settings;
};

struct WatchOptions {
  std::vector<std::string> values;      ///< The parameters whose newest numbers are wanted.
  std::chrono::milliseconds pace{500};  ///< The time between two looks at a store.
};

/// Watches stores: a thread for each looks at it, and asks only what has changed since. However many want to know, they
/// all get what was found, so that no store is asked more than once. A store that cannot be read is said to be so, and
/// looked at again. Every thread can call every operation.
class Watch {
 public:
  /// Begins to watch. What a store says is known after the first look.
  Watch(std::vector<WatchedStore> stores, WatchOptions options);
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  /// Ends, and waits until the threads have.
  ~Watch();

  /// What the stores say now. Never null.
  std::shared_ptr<const Now> Newest() const;
  /// Waits until something has changed since a state with this sequence, or the time is over, or the watching ends.
  /// @return what the stores say then.
  std::shared_ptr<const Now> WaitAfter(long long sequence, std::chrono::milliseconds longest) const;
  /// Waits until every store was looked at once, or the time is over, or the watching ends.
  /// @return what the stores say then.
  std::shared_ptr<const Now> WaitForAll(std::chrono::milliseconds longest) const;

  /// Wakes all that wait; from now on nobody waits.
  void End();
  /// Waits until no store is looked at any more, after End(), or the time is over: a server may not answer.
  /// @return whether none is.
  bool AwaitEnd(std::chrono::milliseconds longest) const;
  bool HasEnded() const;

 private:
  void Look(std::size_t at);
  void Publish(std::size_t at, StoreNow found);
  /// Says why a look failed. It throws nothing.
  void Tell(std::size_t at, const char* reason);
  /// Waits until the next look. @return whether there is one.
  bool Pause() const;

  const std::vector<WatchedStore> stores;
  const WatchOptions options;
  mutable std::mutex mutex;  // guards what follows
  mutable std::condition_variable changed;
  std::shared_ptr<const Now> newest;
  bool ended = false;
  std::size_t looking;  // threads that have not ended
  std::vector<std::thread> threads;
};

}  // namespace Velora::Ts

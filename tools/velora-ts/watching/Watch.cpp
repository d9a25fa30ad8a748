#include "watching/Watch.h"

#include "output/Output.h"
#include "store/Error.h"
#include "watching/StoreWatch.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace Velora::Ts {

Watch::Watch(std::vector<WatchedStore> watched, WatchOptions wanted)
    : stores(std::move(watched)), options(std::move(wanted)), looking(stores.size()) {
  Now first;
  for (const WatchedStore& store : stores) {
    StoreNow unseen;
    unseen.number = store.number;
    unseen.name = NameOf(store.settings.database);
    unseen.isAwaited = true;
    first.stores.push_back(std::make_shared<const StoreNow>(std::move(unseen)));
  }
  newest = std::make_shared<const Now>(std::move(first));
  for (std::size_t at = 0; at < stores.size(); ++at) {
    threads.emplace_back([this, at] { Look(at); });
  }
}

Watch::~Watch() {
  End();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

std::shared_ptr<const Now> Watch::Newest() const {
  const std::lock_guard lock(mutex);
  return newest;
}

std::shared_ptr<const Now> Watch::WaitAfter(long long sequence, std::chrono::milliseconds longest) const {
  std::unique_lock lock(mutex);
  changed.wait_for(lock, longest, [&] { return ended || newest->sequence > sequence; });
  return newest;
}

std::shared_ptr<const Now> Watch::WaitForAll(std::chrono::milliseconds longest) const {
  std::unique_lock lock(mutex);
  const auto isAwaited = [](const auto& store) { return store->isAwaited; };
  changed.wait_for(lock, longest,
                   [&] { return ended || std::none_of(newest->stores.begin(), newest->stores.end(), isAwaited); });
  return newest;
}

void Watch::End() {
  const std::lock_guard lock(mutex);
  ended = true;
  changed.notify_all();
}

bool Watch::AwaitEnd(std::chrono::milliseconds longest) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, longest, [this] { return looking == 0; });
}

bool Watch::HasEnded() const {
  const std::lock_guard lock(mutex);
  return ended;
}

void Watch::Look(std::size_t at) {
  std::optional<StoreWatch> store;
  do {
    try {
      if (!store) {
        store.emplace(stores[at], options.values);
      }
      Publish(at, store->Look());
    } catch (const std::exception& reason) {  // such as lack of memory
      store.reset();
      Tell(at, reason.what());
    }
  } while (Pause());
  const std::lock_guard lock(mutex);
  --looking;
  changed.notify_all();
}

void Watch::Tell(std::size_t at, const char* reason) {
  try {
    StoreNow failed = *Newest()->stores[at];
    failed.isAwaited = false;
    failed.error = std::string("a look at it failed: ") + reason;
    Complain("store '" + failed.name + "': " + failed.error);
    Publish(at, std::move(failed));
  } catch (const std::exception&) {  // there is no memory for it either
  }
}

void Watch::Publish(std::size_t at, StoreNow found) {
  const std::lock_guard lock(mutex);
  if (*newest->stores[at] == found) {
    return;
  }
  Now next = *newest;
  ++next.sequence;
  next.stores[at] = std::make_shared<const StoreNow>(std::move(found));
  newest = std::make_shared<const Now>(std::move(next));
  changed.notify_all();
}

bool Watch::Pause() const {
  std::unique_lock lock(mutex);
  return !changed.wait_for(lock, options.pace, [this] { return ended; });
}

}  // namespace Velora::Ts

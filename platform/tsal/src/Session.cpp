#include "Session.h"

#include "store/recording/SessionRow.h"
#include "store/values/Guid.h"

#include <utility>

namespace Quor::TolvaServices::Local {

using namespace Velora::Store;

Session::Session(const Settings& settings, std::unique_ptr<Writer> opened, const std::string& text1,
                 const std::string& text2, const std::string& text3)
    : database(settings.database), guid(NewGuid()) {
  if (!opened) {
    opened = OpenForWriting(database);
  }
  row = RunOn(std::make_unique<OpenStore>(std::move(opened)), [&](OpenStore& store) {
    Transaction transaction(*store.writer);
    const long long key = InsertSession(*store.writer, guid, settings.instrument, {text1, text2, text3});
    store.writer->HoldLock(key);
    transaction.Commit();
    store.writer->KeepLock(key);
    return key;
  });
}

std::unique_ptr<OpenStore> Session::Take() {
  try {
    while (std::unique_ptr<OpenStore> store = TakeIdle()) {
      if (store->writer->IsUsable()) {
        return store;
      }
    }
  } catch (const StoreReplaced&) {
    CloseIdle();
    throw;
  }
  return Connect();
}

std::unique_ptr<OpenStore> Session::TakeIdle() {
  const std::lock_guard lock(mutex);
  if (idle.empty()) {
    return nullptr;
  }
  std::unique_ptr<OpenStore> store = std::move(idle.back());
  idle.pop_back();
  return store;
}

// Another store can be where this one was, and have another host's session in the same row.
std::unique_ptr<OpenStore> Session::Connect() {
  auto store = std::make_unique<OpenStore>(OpenForWriting(database, Opening::ExpectsStore));
  store->writer->StartOperation();
  if (!store->Sql().Find<int>("SELECT 1 FROM sessions WHERE session_id = ?1 AND guid = ?2", row, guid)) {
    throw StoreReplaced(store->writer->Name());
  }
  return store;
}

void Session::Keep(std::unique_ptr<OpenStore> store) noexcept {
  if (row != 0) {
    store->writer->KeepLock(row);
  }
  store->writer->EndOperation();
  try {
    const std::lock_guard lock(mutex);
    idle.push_back(std::move(store));
  } catch (...) {
    // The operation has succeeded, and stays so; the next one opens a connection of its own.
  }
}

void Session::CloseIdle() {
  std::vector<std::unique_ptr<OpenStore>> closed;
  const std::lock_guard lock(mutex);
  closed.swap(idle);
}

}  // namespace Quor::TolvaServices::Local

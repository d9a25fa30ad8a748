#pragma once

#include "OpenStore.h"
#include "store/settings/Settings.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Quor::TolvaServices::Local {

/// A session of the local TS: the database that it began with, and its row there.
///
/// Each operation has the store opened for itself, so that operations of different threads wait on one another no
/// longer than the database makes them. What was opened is kept for the next operation, with what is known of it.
class Session {
 public:
  /// Records a new session in the database that the settings name.
  /// @param opened the database, if it is open already.
  Session(const Velora::Store::Settings& settings, std::unique_ptr<Velora::Store::Writer> opened,
          const std::string& text1, const std::string& text2, const std::string& text3);

  long long Row() const { return row; }
  const std::string& Guid() const { return guid; }

  /// Runs an operation on a store opened for writing, and returns its result. The store is closed when its database
  /// raised an error, and kept for the next operation when an argument was at fault.
  template <typename Operation>
  auto Run(Operation operation) {
    return RunOn(Take(), operation);
  }

 private:
  template <typename Operation>
  auto RunOn(std::unique_ptr<OpenStore> store, const Operation& operation) {
    store->writer->StartOperation();
    try {
      auto result = operation(*store);
      Keep(std::move(store));
      return result;
    } catch (const Velora::Store::DatabaseError&) {
      if (store->writer->IsLost()) {
        CloseIdle();
      }
      throw;
    } catch (const Velora::Store::StoreReplaced&) {
      CloseIdle();
      throw;
    } catch (const std::runtime_error&) {
      if (store->writer->IsOutsideTransaction()) {
        Keep(std::move(store));
      }
      throw;
    }
  }

  std::unique_ptr<OpenStore> Take();
  std::unique_ptr<OpenStore> TakeIdle();
  /// Opens the store of this session for one more operation.
  std::unique_ptr<OpenStore> Connect();
  void Keep(std::unique_ptr<OpenStore> store) noexcept;
  void CloseIdle();

  const Velora::Store::Database database;
  const std::string guid;
  long long row = 0;
  std::mutex mutex;
  std::vector<std::unique_ptr<OpenStore>> idle;  // guarded by mutex
};

}  // namespace Quor::TolvaServices::Local

#pragma once

#include "store/database/Database.h"

#include <VeloraSystem/FileStamp.h>

#include <array>
#include <chrono>

namespace Velora::Ts {

/// Tells whether the files of a store can have been written since a look at it, without opening them. Of a server it
/// says that they can.
class StoreFiles {
 public:
  explicit StoreFiles(const Store::Database& database) : database(database) {}

  /// To be called before the store is read.
  void Look();
  /// Whether a look now would find what the last one found.
  bool AreUntouched() const;

 private:
  using Clock = std::chrono::steady_clock;
  using Stamps = std::array<System::FileStamp, 4>;
  Stamps StampsNow() const;

  const Store::Database& database;
  Stamps stamps;
  Clock::time_point since{}, looked{};  // since when these are the stamps, and the last look
};

}  // namespace Velora::Ts

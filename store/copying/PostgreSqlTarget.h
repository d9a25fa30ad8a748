#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

/// A database on a server as the target of a copy.
class PostgreSqlTarget : public CopyTarget {
 public:
  explicit PostgreSqlTarget(Writer& store) : store(store) {}

  std::unique_ptr<RowWriter> RowsOf(const Table& table) override;
  void WithoutGuardOfHistory(const std::function<void()>& work) override;
  /// Makes the partition of the event's month.
  void MakeRoomFor(long long event) override;
  /// Sets the sequences behind the copied keys.
  void Finish() override;

 private:
  Writer& store;
  long long lastMonth = 0;
};

}  // namespace Velora::Store

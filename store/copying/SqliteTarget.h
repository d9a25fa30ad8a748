#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

/// A file as the target of a copy.
class SqliteTarget : public CopyTarget {
 public:
  explicit SqliteTarget(Writer& store) : store(store) {}

  std::unique_ptr<RowWriter> RowsOf(const Table& table) override;
  void WithoutGuardOfHistory(const std::function<void()>& work) override;
  void MakeRoomFor(long long /*event*/) override {}
  void Finish() override {}

 private:
  Writer& store;
};

}  // namespace Velora::Store

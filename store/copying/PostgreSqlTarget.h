#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

class PostgreSqlConnection;

/// A database on a server as the target of a copy.
class PostgreSqlTarget : public CopyTarget {
 public:
  explicit PostgreSqlTarget(Writer& store);

  /// Only the owner can lock and alter the tables; hosts that record must not wait for that.
  bool MayFill(bool isNew) override { return isNew && isOwner; }
  void Fill(bool isNew, const std::function<void()>& fill) override;
  void ContinueNumbers() override;
  void Finish() override;

 private:
  Writer& store;
  PostgreSqlConnection& sql;
  const bool isOwner;
};

}  // namespace Velora::Store

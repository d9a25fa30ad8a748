#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

class PostgreSqlConnection;

/// A database on a server as the target of a copy.
class PostgreSqlTarget : public CopyTarget {
 public:
  explicit PostgreSqlTarget(Writer& store);

  void Fill(const std::function<void()>& fill) override;
  /// Sets the sequences behind the copied keys.
  void ContinueNumbers() override;
  void Finish() override;

 private:
  Writer& store;
  PostgreSqlConnection& sql;
};

}  // namespace Velora::Store

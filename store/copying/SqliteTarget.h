#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

/// A file as the target of a copy.
class SqliteTarget : public CopyTarget {
 public:
  explicit SqliteTarget(Writer& store) : store(store) {}

  /// No host records into a file that has the records of other stores.
  bool MayFill(bool /*isNew*/) override { return true; }
  void Fill(bool isNew, const std::function<void()>& fill) override;

 private:
  Writer& store;
};

}  // namespace Velora::Store

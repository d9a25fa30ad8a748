#pragma once

#include "store/copying/CopyTarget.h"

namespace Velora::Store {

/// A file as the target of a copy.
class SqliteTarget : public CopyTarget {
 public:
  explicit SqliteTarget(Writer& store) : store(store) {}

  void Fill(const std::function<void()>& fill) override;

 private:
  Writer& store;
};

}  // namespace Velora::Store

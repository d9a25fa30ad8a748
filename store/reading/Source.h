#pragma once

#include "store/database/Connection.h"

namespace Velora::Store {

/// One state of a database, opened for reading.
class Source {
 public:
  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  virtual ~Source() = default;

  virtual Connection& Sql() = 0;
  /// Whether it has the tables of a store.
  virtual bool IsStore() = 0;
  /// @throws Error when what was read may be a mixture, since hosts began to write while it was read.
  virtual void ExpectUntouched() const = 0;
};

}  // namespace Velora::Store

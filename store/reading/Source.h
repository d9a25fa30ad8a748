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
  /// @throws Error when a host began to write meanwhile, so that what was read can be a mixture of two states.
  virtual void ExpectUntouched() const = 0;
  /// Holds no state any more. Nothing can be asked before Renew().
  virtual void Release() = 0;
  /// Reads the state that the database has now. @throws as the opening does.
  virtual void Renew() = 0;
};

}  // namespace Velora::Store

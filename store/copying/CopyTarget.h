#pragma once

#include <functional>
#include <memory>

namespace Velora::Store {

class Writer;
struct Database;

/// The store into which another one is copied. The subclasses do what differs between the databases.
class CopyTarget {
 public:
  CopyTarget() = default;
  CopyTarget(const CopyTarget&) = delete;
  CopyTarget& operator=(const CopyTarget&) = delete;
  virtual ~CopyTarget() = default;

  /// Whether Fill() can be used for a store that is new, or for one that is not.
  virtual bool MayFill(bool isNew) = 0;
  /// Fills the store in one transaction, in which nobody else uses it. Meanwhile it does not check each row: it has
  /// none of the triggers that an insertion would call, and as long as it is new, no foreign keys. Before the
  /// transaction ends, they are made again, and it is proven that the rows obey the foreign keys and that the schema is
  /// what it was.
  /// @param fill inserts the rows. It may also delete rows.
  /// @throws Error when the rows break a foreign key. Then, and if `fill` throws, the store is as before.
  virtual void Fill(bool isNew, const std::function<void()>& fill) = 0;
  /// Makes new rows get higher numbers than those of this store.
  virtual void ContinueNumbers() {}
  /// Is called after everything was copied.
  virtual void Finish() {}
};

/// Makes the target for the kind of a database.
std::unique_ptr<CopyTarget> MakeCopyTarget(Writer& store, const Database& database);

}  // namespace Velora::Store

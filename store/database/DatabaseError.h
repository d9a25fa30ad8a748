#pragma once

#include "store/Error.h"

#include <string>

namespace Velora::Store {

/// A database refused a statement, or was lost during it.
class DatabaseError : public Error {
 public:
  /// @param text what the error says.
  /// @param reason what the database said, on one line.
  /// @param code what the database calls that: an SQLSTATE, or SQLite's primary result code.
  DatabaseError(const std::string& text, std::string reason, std::string code)
      : Error(text), reason(std::move(reason)), code(std::move(code)) {}

  std::string reason;
  std::string code;
};

/// The database could not be opened or reached at all, as opposed to one that is there and cannot be used.
class NotReachable : public Error {
 public:
  using Error::Error;
};

/// There is no store yet.
class NoStoreYet : public Error {
 public:
  using Error::Error;
};

/// The store that a session records into is no longer the one that it began in.
class StoreReplaced : public Error {
 public:
  explicit StoreReplaced(const std::string& name)
      : Error("TS database '" + name +
              "' was removed or replaced since the session began; expected it to stay until the next session") {}
};

/// Asked for something that this kind of database has not.
class NotOffered : public Error {
 public:
  using Error::Error;
};

}  // namespace Velora::Store

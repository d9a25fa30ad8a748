#pragma once

#include "store/Error.h"

#include <string>

namespace Velora::Store {

/// A database refused a statement, or its connection was lost during one.
class DatabaseError : public Error {
 public:
  /// @param text the text of the error.
  /// @param reason the message of the database, on one line.
  /// @param code the error code of the database: an SQLSTATE, or SQLite's primary result code.
  DatabaseError(const std::string& text, std::string reason, std::string code)
      : Error(text), reason(std::move(reason)), code(std::move(code)) {}

  std::string reason;
  std::string code;
};

/// The database could not be opened or reached.
class NotReachable : public Error {
 public:
  using Error::Error;
};

/// The store does not exist yet.
class NoStoreYet : public Error {
 public:
  using Error::Error;
};

/// The store of a session was replaced by another one since the session began.
class StoreReplaced : public Error {
 public:
  explicit StoreReplaced(const std::string& name)
      : Error("TS database '" + name +
              "' was removed or replaced since the session began; expected it to stay until the next session") {}
};

/// This kind of database, or this build, does not offer what was asked for.
class NotOffered : public Error {
 public:
  using Error::Error;
};

}  // namespace Velora::Store

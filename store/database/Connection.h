#pragma once

#include "store/database/DatabaseError.h"
#include "store/database/Values.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace Velora::Store {

/// A connection to a database of either kind, used by one thread at a time. Statements have their values at ?1, ?2...,
/// in SQL that both take. Every operation raises a DatabaseError when the database refuses it.
class Connection {
 public:
  /// @param name as errors call the database.
  explicit Connection(std::string name) : name(std::move(name)) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  const std::string& Name() const { return name; }

  /// A statement whose answer may be of any length: it comes in portions. On a server it needs a transaction.
  virtual std::unique_ptr<Cursor> Prepare(const std::string& statement) = 0;
  /// A statement whose answer is short, and comes whole.
  virtual std::unique_ptr<Cursor> PrepareShort(const std::string& statement) = 0;
  /// Runs statements without values one after the other.
  virtual void RunScript(const std::string& statements) = 0;

  /// Runs a statement, which the connection keeps prepared.
  template <typename... Values>
  void Run(std::string_view statement, const Values&... values) {
    const InUse used(Kept(statement));
    BindValues(used.cursor, values...);
    used.cursor.Next();
  }

  /// Runs a statement, which the connection keeps prepared, and reads the first row of its answer.
  /// @return the row's values; of one column the value alone. Nothing where there is no row.
  template <typename... Columns, typename... Values>
  auto Find(std::string_view statement, const Values&... values) {
    const InUse used(Kept(statement));
    BindValues(used.cursor, values...);
    const bool found = used.cursor.Next();
    if constexpr (sizeof...(Columns) == 1) {
      return found ? std::optional<Columns...>(ValueIn<Columns...>::Read(used.cursor, 0)) : std::nullopt;
    } else {
      return found ? std::optional(ReadRow<Columns...>(used.cursor, std::index_sequence_for<Columns...>()))
                   : std::nullopt;
    }
  }

  /// Says what an error means before it is raised: the explainer may raise another in its place.
  using Explainer = std::function<void(const DatabaseError& error)>;
  void ExplainErrorsBy(Explainer explainer) { explain = std::move(explainer); }

 protected:
  /// Raises what the database said.
  [[noreturn]] void Raise(const std::string& reason, const std::string& code) const;
  /// Lets go of the kept statements: to be called before the connection is closed.
  void ForgetStatements() { kept.clear(); }

 private:
  struct InUse {
    explicit InUse(Cursor& cursor) : cursor(cursor) {}
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;
    ~InUse() { cursor.Restart(); }

    Cursor& cursor;
  };
  Cursor& Kept(std::string_view statement);

  const std::string name;
  Explainer explain;
  std::map<std::string, std::unique_ptr<Cursor>, std::less<>> kept;
};

/// Opens no database of a store: an empty one of SQLite in memory.
std::unique_ptr<Connection> ConnectToMemory();

}  // namespace Velora::Store

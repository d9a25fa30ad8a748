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

/// A connection to a database of either kind. One thread at a time may use it. Statements are in SQL that both
/// databases accept, with values at ?1, ?2... Every operation throws a DatabaseError if the database refuses it.
class Connection {
 public:
  /// @param name the name of the database in errors.
  explicit Connection(std::string name) : name(std::move(name)) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  virtual ~Connection() = default;

  const std::string& Name() const { return name; }

  /// Prepares a statement whose result can be of any length; it is fetched in portions. On a server, this needs a
  /// transaction.
  virtual std::unique_ptr<Cursor> Prepare(const std::string& statement) = 0;
  /// Prepares a statement that is kept and whose result is short; it is fetched at once. Texts are not copied when they
  /// are bound: they must stay until the result was read.
  virtual std::unique_ptr<Cursor> PrepareShort(const std::string& statement) = 0;
  /// Runs several statements without values.
  virtual void RunScript(const std::string& statements) = 0;

  /// Runs a statement. The connection keeps it prepared.
  template <typename... Values>
  void Run(std::string_view statement, const Values&... values) {
    const InUse used(Kept(statement));
    BindValues(used.cursor, values...);
    used.cursor.Run();
  }

  /// Runs a statement and reads the first row of its result. The connection keeps the statement prepared.
  /// @return the values of the row as a tuple, or as a value if there is one column. Nothing if there is no row.
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

  /// Is called before an error is thrown, and can throw another error with more information instead.
  using Explainer = std::function<void(const DatabaseError& error)>;
  void ExplainErrorsBy(Explainer explainer) { explain = std::move(explainer); }

 protected:
  /// Throws an error of the database.
  [[noreturn]] void Raise(const std::string& reason, const std::string& code) const;
  /// Releases the prepared statements. Must be called before the connection is closed.
  void ForgetStatements() { kept.clear(); }

 private:
  struct InUse {
    explicit InUse(Cursor& cursor) : cursor(cursor) {}
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;
    ~InUse() { cursor.Restart(); }

    Cursor& cursor;
  };
  /// Most texts differ in their lengths, so few of them need to be compared.
  struct ShorterFirst {
    using is_transparent = void;
    bool operator()(std::string_view one, std::string_view other) const {
      return one.size() != other.size() ? one.size() < other.size() : one < other;
    }
  };
  Cursor& Kept(std::string_view statement);

  const std::string name;
  Explainer explain;
  std::map<std::string, std::unique_ptr<Cursor>, ShorterFirst> kept;
};

/// Opens an empty SQLite database in memory.
std::unique_ptr<Connection> ConnectToMemory();

}  // namespace Velora::Store

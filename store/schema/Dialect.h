#pragma once

#include "store/schema/Tables.h"
#include "store/schema/Views.h"

#include <string>
#include <vector>

namespace Velora::Store {

/// Writes the changes of a schema version (Versions.h) as statements for one database.
class Dialect {
 public:
  Dialect() = default;
  Dialect(const Dialect&) = delete;
  Dialect& operator=(const Dialect&) = delete;
  virtual ~Dialect() = default;

  /// Creates a table and the indexes that its first version had.
  void Make(const Table& table);
  /// Creates the indexes of a table that a version of the schema added.
  void MakeIndexes(const Table& table, int version) { MakeIndexes(table, version, version); }
  /// Makes what was unique in a whole table unique among the rows of each store.
  virtual void MakeUniquePerStore(const Table& table) = 0;
  /// Creates a view.
  void Make(const View& view);
  /// Replaces the definition of a view.
  virtual void Replace(const View& view) = 0;
  /// Makes the database refuse to change, delete or replace rows.
  virtual void KeepRows(const Table& table) = 0;
  /// Makes the database refuse rows whose number is below 1 and, on a server, rows with numbers out of order.
  virtual void NumberRows(const Table& table) = 0;
  /// Makes the database refuse seals of this store that a program of before version 3 made beside rows of other stores:
  /// it takes them for its own.
  virtual void RefuseOldSeals() = 0;
  /// Creates the table `running` and what keeps it up to date (Running.h).
  virtual void NoteRunning() = 0;
  /// Adds statements that only a server needs; {schema} stands for the name of its schema.
  virtual void OnServer(const std::string& /*statements*/) {}

  const std::vector<std::string>& Statements() const { return statements; }

 protected:
  static constexpr const char* oldSeal =
      "this version of velora-ts would seal the records of other stores, which are here too; expected the version that "
      "prepared this store, or a later one";

  /// The type of a column; empty if the database has the column without a declaration.
  virtual std::string TypeOf(const Table& table, const Column& column) const = 0;
  virtual const std::string& DefinitionOf(const View& view) const = 0;
  /// The constraint for the columns that are unique together, within CREATE TABLE; or empty.
  virtual std::string UniqueTogether(const Table& table) const = 0;
  /// Adds the indexes for columns that are unique, after CREATE TABLE.
  virtual void MakeUnique(const Table& /*table*/) {}
  /// How the database keeps an index, within CREATE INDEX; or empty.
  virtual std::string MethodOf(const Index& /*index*/) const { return ""; }
  /// The end of CREATE TABLE, after the columns.
  virtual std::string EndOf(const Table& table) const = 0;

  void Add(std::string statement) { statements.push_back(std::move(statement)); }

 private:
  void MakeIndexes(const Table& table, int first, int last);

  std::vector<std::string> statements;
};

}  // namespace Velora::Store

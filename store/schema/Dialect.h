#pragma once

#include "store/schema/Tables.h"
#include "store/schema/Views.h"

#include <string>
#include <vector>

namespace Velora::Store {

/// Writes what a version of the schema brings (Versions.h) as the statements of one database.
class Dialect {
 public:
  Dialect() = default;
  Dialect(const Dialect&) = delete;
  Dialect& operator=(const Dialect&) = delete;
  virtual ~Dialect() = default;

  /// Makes a table with its indexes.
  void Make(const Table& table);
  void Make(const View& view);
  /// Has a view read otherwise than before.
  virtual void Replace(const View& view) = 0;
  /// Has the database refuse whatever changes, deletes or replaces a row.
  virtual void KeepRows(const Table& table) = 0;
  /// Has it refuse rows that are not numbered from 1 on, and on a server those that come out of turn.
  virtual void NumberRows(const Table& table) = 0;
  /// What a server alone has; {schema} stands for the name of its schema.
  virtual void OnServer(const std::string& /*statements*/) {}

  const std::vector<std::string>& Statements() const { return statements; }

 protected:
  /// A column's type; empty where the database has the column by itself.
  virtual std::string TypeOf(const Table& table, const Column& column) const = 0;
  virtual const std::string& DefinitionOf(const View& view) const = 0;
  /// Makes sure of the columns that are unique together: within the statement, or after it.
  virtual std::string UniqueTogether(const Table& table) const = 0;
  virtual void MakeUnique(const Table& /*table*/) {}
  /// What stands behind the columns.
  virtual std::string EndOf(const Table& table) const = 0;

  void Add(std::string statement) { statements.push_back(std::move(statement)); }

 private:
  std::vector<std::string> statements;
};

}  // namespace Velora::Store

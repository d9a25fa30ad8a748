#pragma once

#include "store/schema/Dialect.h"

namespace Velora::Store {

class PostgreSqlDialect : public Dialect {
 public:
  /// @param schema the name of the schema, quoted.
  explicit PostgreSqlDialect(std::string schema) : schema(std::move(schema)) {}

  void MakeUniquePerStore(const Table& table) override;
  void Replace(const View& view) override;
  void KeepRows(const Table& table) override;
  void NumberRows(const Table& table) override;
  void RefuseOldSeals() override;
  void NoteRunning() override;
  void OnServer(const std::string& statements) override;

 protected:
  std::string TypeOf(const Table& table, const Column& column) const override;
  const std::string& DefinitionOf(const View& view) const override;
  std::string UniqueTogether(const Table& /*table*/) const override { return ""; }
  void MakeUnique(const Table& table) override;
  std::string MethodOf(const Index& index) const override;
  std::string EndOf(const Table& table) const override;

 private:
  const std::string schema;
};

/// The statement for the index that keeps the columns of a table unique that are unique together. An index cannot
/// contain texts longer than a third of a page, so it contains their digests.
/// @param digest the function that makes a digest.
std::string UniqueIndex(const Table& table, const std::string& digest);

}  // namespace Velora::Store

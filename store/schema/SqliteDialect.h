#pragma once

#include "store/schema/Dialect.h"

namespace Velora::Store {

class SqliteDialect : public Dialect {
 public:
  void MakeUniquePerStore(const Table& table) override;
  void Replace(const View& view) override;
  void KeepRows(const Table& table) override;
  void NumberRows(const Table& table) override;
  void RefuseOldSeals() override;
  void NoteRunning() override;

 protected:
  std::string TypeOf(const Table& table, const Column& column) const override;
  const std::string& DefinitionOf(const View& view) const override { return view.definition; }
  std::string UniqueTogether(const Table& table) const override;
  void MakeUnique(const Table& table) override;
  std::string EndOf(const Table& table) const override { return table.primaryKey.empty() ? "" : " WITHOUT ROWID"; }

 private:
  void AddTrigger(const Table& table, const std::string& action, const std::string& when);
};

}  // namespace Velora::Store

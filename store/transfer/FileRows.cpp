#include "store/transfer/FileRows.h"

#include "store/database/Connection.h"
#include "store/reading/Rows.h"

namespace Velora::Store {

FileRows::FileRows(Connection& file, const Table& table, long long shift) : columns(table.columns), shift(shift) {
  std::string places;
  for (std::size_t place = 1; place <= columns.size(); ++place) {
    places += (place == 1 ? "?" : ", ?") + std::to_string(place);
  }
  insert = file.Prepare("INSERT INTO " + table.name + " (" + table.ColumnList() + ") VALUES (" + places + ")");
}

void FileRows::Add(const Rows& rows, std::string_view /*bytes*/) {
  insert->Restart();
  for (std::size_t at = 0; at < columns.size(); ++at) {
    const int column = static_cast<int>(at);
    const int place = column + 1;
    if (rows.IsNull(column)) {
      insert->Bind(place, nullptr);
    } else if (columns[at].type == Type::Text) {
      insert->Bind(place, rows.Whole(column));
    } else if (columns[at].type == Type::Number) {
      insert->Bind(place, rows.Number(column));
    } else {
      insert->Bind(place, rows.Integer(column) + (columns[at].HoldsKey() ? shift : 0));
    }
  }
  insert->Next();
}

}  // namespace Velora::Store

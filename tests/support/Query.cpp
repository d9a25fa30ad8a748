#include "support/Query.h"

#include "store/database/Connection.h"
#include "support/TestStore.h"

#include <sstream>

std::string Query(Velora::Store::Connection& sql, const std::string& statement) {
  using Type = Velora::Store::Cursor::Type;
  std::ostringstream answer;
  const auto rows = sql.PrepareShort(statement);
  while (rows->Next()) {
    for (int column = 0; column < rows->Columns(); ++column) {
      answer << (column == 0 ? "" : "|");
      if (rows->TypeOf(column) == Type::Null) {
        answer << "NULL";
      } else if (rows->TypeOf(column) == Type::Number) {
        answer << rows->Number(column);
      } else {
        answer << rows->Text(column);
      }
    }
    answer << '\n';
  }
  return answer.str();
}

std::string Query(const std::filesystem::path& database, const std::string& statement) {
  return Query(*TestStore(database).Open(), statement);
}

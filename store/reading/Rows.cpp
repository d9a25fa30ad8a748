#include "store/reading/Rows.h"

#include "store/reading/Listener.h"
#include "store/reading/Reader.h"
#include "store/values/Json.h"

#include "store/Error.h"

#include <new>

namespace Velora::Store {

std::string Beginning(const std::string& column, std::size_t longest) {
  return longest == 0 ? column : "substr(" + column + ", 1, " + std::to_string(longest) + ')';
}

Rows::Rows(Connection& connection, const std::string& question) : cursor(connection.Prepare(question)) {
  if (questionListener) {
    questionListener(question);
  }
}

Rows::Rows(const Reader& store, const std::string& question) : Rows(store.Sql(), question) {}

void Rows::Refuse(int column) const {
  throw Error(PlaceOf(column) + " has " + std::to_string(Whole(column).size()) + " bytes; at most " +
              std::to_string(longestShown) + " can be shown; export without --format writes texts of any length");
}

void Rows::AppendValue(std::string& json, int column) const {
  try {
    Append(json, column);
  } catch (const std::bad_alloc&) {
    throw Error(PlaceOf(column) + " has " + std::to_string(Whole(column).size()) +
                " bytes, for which there is not enough memory");
  }
}

std::string Rows::PlaceOf(int column) const {
  std::string row;
  for (int other = 0; other < Columns(); ++other) {
    const std::string_view name = Name(other);
    if (cursor->TypeOf(other) == Cursor::Type::Integer && name.find_first_of("_(") != 0) {
      row += (row.empty() ? " of the row with " : ", ") + std::string(name) + ' ' + std::to_string(Integer(other));
    }
  }
  return std::string("value '") + Name(column) + '\'' + row;
}

void Rows::Append(std::string& json, int column) const {
  switch (cursor->TypeOf(column)) {
    case Cursor::Type::Integer:
      AppendInteger(json, Integer(column));
      break;
    case Cursor::Type::Number:
      AppendNumber(json, Number(column));
      break;
    case Cursor::Type::Text:
      AppendText(json, Whole(column));
      break;
    case Cursor::Type::Blob:
      AppendBlob(json, Whole(column));
      break;
    case Cursor::Type::Null:
      json += "null";
  }
}

}  // namespace Velora::Store

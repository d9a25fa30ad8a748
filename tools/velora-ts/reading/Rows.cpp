#include "reading/Rows.h"

#include "output/Json.h"
#include "reading/Listener.h"
#include "reading/Store.h"

Rows::Rows(const Store& store, const std::string& question) : cursor(store.Reading().Prepare(question)) {
  if (questionListener) {
    questionListener(question);
  }
}

void Rows::AppendValue(std::string& json, int column) const {
  switch (cursor->TypeOf(column)) {
    case Cursor::Type::Integer:
      json += std::to_string(Integer(column));
      break;
    case Cursor::Type::Number:
      AppendNumber(json, Number(column));
      break;
    case Cursor::Type::Text:
      AppendText(json, Text(column));
      break;
    case Cursor::Type::Blob:
      AppendBlob(json, Text(column));
      break;
    case Cursor::Type::Null:
      json += "null";
  }
}

#include "store/database/Connection.h"

namespace Velora::Store {

void Connection::Raise(const std::string& reason, const std::string& code) const {
  const std::string text = "TS database '" + name + "': " + reason;
  if (explain) {
    explain(DatabaseError(text, reason, code));
  }
  throw DatabaseError(text, reason, code);
}

Cursor& Connection::Kept(std::string_view statement) {
  const auto found = kept.find(statement);
  if (found != kept.end()) {
    return *found->second;
  }
  std::string text(statement);
  std::unique_ptr<Cursor> prepared = PrepareShort(text);
  return *kept.emplace(std::move(text), std::move(prepared)).first->second;
}

}  // namespace Velora::Store

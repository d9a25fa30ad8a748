#include "store/database/Connection.h"

namespace Velora::Store {

void Connection::Raise(const std::string& reason, const std::string& code) const {
  const DatabaseError error("TS database '" + name + "': " + reason, reason, code);
  if (explain) {
    explain(error);
  }
  throw error;
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

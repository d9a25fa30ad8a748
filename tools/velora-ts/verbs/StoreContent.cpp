#include "verbs/StoreContent.h"

#include "store/reading/Reader.h"
#include "store/schema/Tables.h"

namespace Velora::Ts {

using namespace Store;

void ContentReader::Add(const Table& table, std::string_view row) {
  if (table.name != current) {
    progress.emplace(doing + ' ' + table.name, 0);
    current = table.name;
  }
  Rows& rows = tables[table.name];
  ++rows.count;
  rows.sha.Add(row);
  progress->Add(1);
}

Content ContentReader::Finish() {
  Content content;
  for (const Table& table : Tables()) {
    Rows& rows = tables[table.name];
    content[table.name] = {rows.count, rows.sha.Finish()};
  }
  return content;
}

Content ContentOf(const Reader& store, const Keys& keys, long long shift) {
  ContentReader content("Comparing");
  VisitRows(
      store, keys, [&](const Table& table, std::string_view row) { content.Add(table, row); }, shift);
  return content.Finish();
}

}  // namespace Velora::Ts

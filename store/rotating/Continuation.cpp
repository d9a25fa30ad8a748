#include "store/rotating/Continuation.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/TableIn.h"
#include "store/schema/BringUp.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Tables.h"

#include <VeloraSystem/Path.h>
#include "store/Error.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace Velora::Store {
namespace {

/// The row of a store in its own table.
std::string RowOf(const Reader& store, long long origin) {
  return " FROM " + TableIn(store, TableNamed("stores")) +
         " s WHERE store_id = " + std::to_string(ShiftOf(origin) + thisStore);
}

bool IsSqlite(const std::filesystem::path& file) {
  constexpr std::string_view beginning = "SQLite format 3";
  std::string begin(beginning.size(), '\0');
  std::ifstream(file, std::ios::binary).read(begin.data(), static_cast<std::streamsize>(begin.size()));
  return begin == beginning;
}

/// Whether a file is a store with a guid. Files that cannot be read are not.
bool Has(const std::string& file, const std::string& guid) {
  try {
    const Reader store({Database::Kind::Sqlite, file});
    Rows own(store, "SELECT guid" + RowOf(store, thisStore));
    return own.Next() && own.Text(0) == guid;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

Continued EndOf(const Reader& store, long long origin) {
  Rows end(store, "SELECT s.guid, (SELECT seal_hash FROM " + TableIn(store, TableNamed("seals")) + " WHERE " +
                      IsOfStore("seal_id", origin) + " ORDER BY seal_id DESC LIMIT 1)" + RowOf(store, origin));
  end.Next();
  return {std::string(end.Text(0)), std::string(end.Text(1))};
}

std::optional<Continued> PreviousOf(const Reader& store, long long origin) {
  Rows row(store, "SELECT previous_guid, previous_hash" + RowOf(store, origin));
  if (!row.Next() || row.IsNull(0)) {
    return std::nullopt;
  }
  return Continued{std::string(row.Text(0)), std::string(row.Text(1))};
}

std::string FileBeside(const std::string& file, const std::string& guid) {
  std::error_code ended;
  for (std::filesystem::directory_iterator one(System::PathOf(file).parent_path(), ended), end; !ended && one != end;
       one.increment(ended)) {
    std::error_code unknown;
    std::string path = System::TextOf(one->path());
    if (path != file && one->is_regular_file(unknown) && IsSqlite(one->path()) && Has(path, guid)) {
      return path;
    }
  }
  return "";
}

Link LinkOf(const Reader& store, long long origin) {
  const std::optional<Continued> previous = PreviousOf(store, origin);
  if (!previous) {
    return {""};
  }
  const std::string name = "the store " + previous->guid;
  const auto compare = [&](const Reader& where, long long number) -> Link {
    return EndOf(where, number).hash == previous->hash
               ? Link{name + " in '" + where.Name() + "' from its newest seal"}
               : Link{name, "it continues " + name + " in '" + where.Name() + "' from a seal with the hash " +
                                previous->hash + ", but the newest seal there is another one"};
  };
  Rows here(store, "SELECT store_id FROM stores WHERE guid = ?1");
  if (here.Ask(previous->guid).Next()) {
    const long long number = StoreOf(here.Integer(0));
    Rows seal(store, "SELECT 1 FROM seals WHERE seal_hash = ?1 AND " + IsOfStore("seal_id", number));
    return seal.Ask(previous->hash).Next()
               ? compare(store, number)
               : Link{name, "", "the seal from which it continues " + name + ": it has not come from the old file"};
  }
  const bool isFile = store.Where().kind == Database::Kind::Sqlite;
  const std::string file = isFile ? FileBeside(store.Where().where, previous->guid) : "";
  return file.empty() ? Link{name, "",
                             "the seal with the hash " + previous->hash + ", from which it continues " + name +
                                 ": that store is not here"}
                      : compare(Reader({Database::Kind::Sqlite, file}), thisStore);
}

}  // namespace Velora::Store

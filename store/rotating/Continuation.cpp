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
std::string OwnRow(const Reader& store) {
  return " FROM " + TableIn(store, TableNamed("stores")) + " s WHERE store_id = " + std::to_string(thisStore);
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
    Rows own(store, "SELECT guid" + OwnRow(store));
    return own.Next() && own.Text(0) == guid;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

Continued EndOf(const Reader& store) {
  Rows end(store, "SELECT s.guid, (SELECT seal_hash FROM seals WHERE " + IsOfStore("seal_id", thisStore) +
                      " ORDER BY seal_id DESC LIMIT 1)" + OwnRow(store));
  end.Next();
  return {std::string(end.Text(0)), std::string(end.Text(1))};
}

std::optional<Continued> PreviousOf(const Reader& store) {
  Rows own(store, "SELECT previous_guid, previous_hash" + OwnRow(store));
  if (!own.Next() || own.IsNull(0)) {
    return std::nullopt;
  }
  return Continued{std::string(own.Text(0)), std::string(own.Text(1))};
}

std::string FileBeside(const std::string& file, const std::string& guid) {
  std::error_code ended;
  for (std::filesystem::directory_iterator one(System::PathOf(file).parent_path(), ended), end; !ended && one != end;
       one.increment(ended)) {
    std::error_code unknown;
    const std::string path = System::TextOf(one->path());
    if (path != file && one->is_regular_file(unknown) && IsSqlite(one->path()) && Has(path, guid)) {
      return path;
    }
  }
  return "";
}

}  // namespace Velora::Store

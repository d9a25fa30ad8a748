#include "support/TestStore.h"

#include "store/database/PostgreSqlConnection.h"
#include "store/database/SqliteConnection.h"

#include <sqlite3.h>

#include <cstdlib>
#include <functional>

namespace {

const char* Server() { return std::getenv("VELORA_TEST_SERVER"); }
std::string On(const std::string& database) { return std::string(Server()) + " dbname=" + database; }

}  // namespace

SqlConnection OpenFile(const std::filesystem::path& file) {
  return std::make_unique<Velora::Store::SqliteConnection>(file.string(), file.string(),
                                                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

SqlConnection OpenServer(const std::string& address) {
  return std::make_unique<Velora::Store::PostgreSqlConnection>(address);
}

bool TestStore::OnServer() { return Server() != nullptr; }

std::string TestStore::Attributes(const std::string& path) const {
  return OnServer() ? "Backend='postgresql' Connection='" + Address() + "'"
                    : "Backend='sqlite3' Connection='" + path + "'";
}

void TestStore::Make() const {
  if (!OnServer()) {
    return;
  }
  const SqlConnection server = OpenServer(On("postgres"));
  if (!server->Find<int>("SELECT 1 FROM pg_database WHERE datname = ?1", Name())) {
    server->RunScript("CREATE DATABASE " + Name());
  }
}

SqlConnection TestStore::Open() const { return OnServer() ? OpenServer(Address()) : OpenFile(file); }

std::string TestStore::Name() const { return "test_" + std::to_string(std::hash<std::string>()(file.string())); }
std::string TestStore::Address() const { return On(Name()); }

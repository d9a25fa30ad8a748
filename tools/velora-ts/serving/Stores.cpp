#include "serving/Route.h"
#include "serving/Served.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long mostNames = 1000;
constexpr std::size_t longest = 200;  // characters of a name

/// @param table in which a column has the names.
std::string NamesIn(const Reader& store, const std::string& column, const std::string& table) {
  Rows names(store, "SELECT DISTINCT " + Beginning(column, longest) + " AS name FROM " + table +
                        " ORDER BY name LIMIT " + std::to_string(mostNames));
  std::string json = "[";
  while (names.Next()) {
    json += json.size() > 1 ? "," : "";
    AppendText(json, names.Text(0));
  }
  return json + ']';
}

std::string Instruments(const Reader& store) { return NamesIn(store, "instrument", "sessions"); }

/// Those of the newest versions: with each version of a host come further ones.
std::string Activities(const Reader& store) {
  return NamesIn(store, "v.name", "(SELECT name FROM activity_versions newest ORDER BY version_id DESC LIMIT 10000) v");
}

void AppendStore(std::string& json, const ServedStore& place) {
  const Database& database = place.settings.database;
  json += "{\"store\":" + std::to_string(place.number) + ",\"name\":";
  AppendText(json, NameOf(database));
  json += std::string(",\"kind\":\"") + (database.kind == Database::Kind::Sqlite ? "file" : "server") + "\",";
  try {
    const Reader store(database);
    const std::string instruments = Instruments(store), activities = Activities(store);
    store.ExpectUntouched();
    json += "\"schema\":" + std::to_string(store.SchemaVersion()) + ",\"instruments\":" + instruments;
    json += ",\"activities\":" + activities + ",\"error\":null}";
  } catch (const Error& error) {
    json += "\"schema\":null,\"instruments\":[],\"activities\":[],\"error\":";
    AppendText(json, error.what());
    json += '}';
  }
}

Http::Answer AnswerStores(const Served& served, Http::Question& question) {
  question.ExpectNoOthers();
  Http::Answer answer;
  answer.body = "{\"version\":\"" VELORA_VERSION "\",\"stores\":";
  const char* separator = "[\n";
  for (const ServedStore& place : served.stores) {
    answer.body += separator;
    AppendStore(answer.body, place);
    separator = ",\n";
  }
  answer.body += "]}\n";
  return answer;
}

}  // namespace

extern const Route routeStores = {"/api/stores", &AnswerStores};

}  // namespace Velora::Ts

#include "serving/Route.h"
#include "serving/Served.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/values/Json.h"

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long mostInstruments = 1000;
constexpr std::size_t longest = 200;  // characters of a name

std::string Instruments(const Reader& store) {
  Rows names(store, "SELECT DISTINCT " + Beginning("instrument", longest) +
                        " AS name FROM sessions ORDER BY name LIMIT " + std::to_string(mostInstruments));
  std::string json = "[";
  while (names.Next()) {
    json += json.size() > 1 ? "," : "";
    AppendText(json, names.Text(0));
  }
  return json + ']';
}

void AppendStore(std::string& json, const ServedStore& place) {
  const Database& database = place.settings.database;
  json += "{\"store\":" + std::to_string(place.number) + ",\"name\":";
  AppendText(json, NameOf(database));
  json += std::string(",\"kind\":\"") + (database.kind == Database::Kind::Sqlite ? "file" : "server") + "\",";
  try {
    const Reader store(database);
    const std::string instruments = Instruments(store);
    store.ExpectUntouched();
    json += "\"schema\":" + std::to_string(store.SchemaVersion()) + ",\"instruments\":" + instruments;
    json += ",\"error\":null}";
  } catch (const Error& error) {
    json += "\"schema\":null,\"instruments\":[],\"error\":";
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

#include "page/writer/RunHosts.h"

#include "store/reading/Hosts.h"
#include "store/reading/Runs.h"
#include "store/values/Json.h"
#include "store/values/StoredTime.h"

namespace Velora::Page {

using namespace Store;

namespace {

void AppendState(std::string& json, const KnownState& known) {
  json += std::string("\"state\":\"") + NameOf(known.state) + "\",\"why\":";
  AppendText(json, known.why);
}

}  // namespace

void AppendHosts(std::string& json, const Reader& store, const Run& run, long long start) {
  Hosts hosts(store);
  json += '{';
  AppendState(json, hosts.Of(run));
  json += ",\"asked\":" + std::to_string(Now().time_since_epoch().count() - start) + ",\"last\":";
  const std::optional<long long> last = Microseconds(LastRecorded(store, run));
  json += (last ? std::to_string(*last - start) : "null") + ",\"unfinished\":[";
  const char* separator = "";
  for (const UnfinishedExecution& one : hosts.UnfinishedOf(run)) {
    json +=
        separator + ("{\"number\":" + std::to_string(one.key)) + ",\"session\":" + std::to_string(one.session) + ',';
    AppendState(json, one.known);
    json += '}';
    separator = ",";
  }
  json += "]}";
}

}  // namespace Velora::Page
